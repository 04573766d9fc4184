#include "tool/city/Demand.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace cubes::tool {

namespace {

using Figures = std::vector<double>;

// Shares of a day's trips out and back that are made in a period. The rest are made at night.
struct Flow {
    double out;
    double back;
};

struct Behaviour {
    double tripsPerResident; // out of home, a day
    double (*attraction)(Zone const&);
    Flow flows[3];
};

double jobsOf(Zone const& zone) {
    return zone.jobs;
}
double schoolPlacesOf(Zone const& zone) {
    return zone.schoolPlaces;
}
double shopSpaceOf(Zone const& zone) {
    return zone.shopSpace;
}
double peopleOf(Zone const& zone) {
    return zone.residents + zone.jobs;
}

// The periods are morning, midday and evening.
constexpr Behaviour behaviours[] = {
    {0.45, jobsOf, {{0.75, 0.03}, {0.12, 0.20}, {0.05, 0.65}}},
    {0.20, schoolPlacesOf, {{0.90, 0.00}, {0.10, 0.55}, {0.00, 0.40}}},
    {0.35, shopSpaceOf, {{0.10, 0.05}, {0.55, 0.50}, {0.30, 0.40}}},
    {0.50, peopleOf, {{0.15, 0.10}, {0.40, 0.35}, {0.35, 0.35}}},
};

Figures productionsOf(Behaviour const& behaviour, std::vector<Zone> const& zones) {
    Figures figures;
    for (auto const& zone : zones) figures.push_back(behaviour.tripsPerResident * zone.residents);
    return figures;
}

Figures attractionsOf(Behaviour const& behaviour, std::vector<Zone> const& zones, double total) {
    Figures figures;
    for (auto const& zone : zones) figures.push_back(behaviour.attraction(zone));
    double const scale = total / totalOf(figures);
    for (double& figure : figures) figure *= scale;
    return figures;
}

Figures mixed(Figures const& first, double firstShare, Figures const& second, double secondShare) {
    Figures figures;
    for (std::size_t i = 0; i < first.size(); ++i) figures.push_back(firstShare * first[i] + secondShare * second[i]);
    return figures;
}

}

double totalOf(std::vector<double> const& figures) {
    return std::accumulate(figures.begin(), figures.end(), 0.0);
}

Margins marginsOf(Purpose purpose, Period period, std::vector<Zone> const& zones) {
    auto const& behaviour = behaviours[static_cast<std::size_t>(purpose)];
    auto const flow = behaviour.flows[static_cast<std::size_t>(period)];
    auto const homes = productionsOf(behaviour, zones);
    auto const places = attractionsOf(behaviour, zones, totalOf(homes));
    return {mixed(homes, flow.out, places, flow.back), mixed(places, flow.out, homes, flow.back)};
}

namespace {

constexpr double perMinute = -0.06;
// Money by car, effort by bike; transit fares are flat.
constexpr double perKilometre[] = {-0.03, 0, -0.08};

// Mode-specific constants by purpose.
constexpr double modeConstants[][3] = {
    {0, 0.1, -0.4},
    {-1.8, 0.4, 0.2},
    {0.3, -0.4, -0.6},
    {0, -0.2, -0.3},
};

double utilityOf(Purpose purpose, std::size_t mode, double time, double distance) {
    return modeConstants[static_cast<std::size_t>(purpose)][mode] + perMinute * time + perKilometre[mode] * distance;
}

}

ModeChoice chooseModes(
    Purpose purpose, std::vector<SquareTable> const& times, std::vector<SquareTable> const& distances) {
    auto const size = times.front().size();
    ModeChoice choice{{}, SquareTable(size)};
    for (std::size_t mode = 0; mode < times.size(); ++mode)
        choice.shares.push_back(SquareTable::of(size, [&](std::size_t from, std::size_t to) {
            return std::exp(utilityOf(purpose, mode, times[mode].at(from, to), distances[mode].at(from, to)));
        }));
    for (std::size_t from = 0; from < size; ++from)
        for (std::size_t to = 0; to < size; ++to) {
            double sum = 0;
            for (auto const& share : choice.shares) sum += share.at(from, to);
            for (auto& share : choice.shares) share.at(from, to) /= sum;
            choice.logsum.at(from, to) = std::log(sum);
        }
    return choice;
}

namespace {

using Figures = std::vector<double>;

// Leaves room for the rounding to single precision, so that totals are right within a millionth.
constexpr double tolerance = 5e-7;
constexpr int mostRounds = 1000;

// Work trips are long, shopping trips are short.
constexpr double sensitivities[] = {1.1, 1.9, 1.9, 1.5};

Figures rowSums(SquareTable const& deterrence, Figures const& columnFactors) {
    Figures sums(deterrence.size());
    for (std::size_t i = 0; i < sums.size(); ++i)
        for (std::size_t j = 0; j < sums.size(); ++j) sums[i] += deterrence.at(i, j) * columnFactors[j];
    return sums;
}

Figures columnSums(SquareTable const& deterrence, Figures const& rowFactors) {
    Figures sums(deterrence.size());
    for (std::size_t i = 0; i < sums.size(); ++i)
        for (std::size_t j = 0; j < sums.size(); ++j) sums[j] += deterrence.at(i, j) * rowFactors[i];
    return sums;
}

Figures quotients(Figures const& totals, Figures const& sums) {
    Figures factors;
    for (std::size_t i = 0; i < totals.size(); ++i) factors.push_back(totals[i] == 0 ? 0 : totals[i] / sums[i]);
    return factors;
}

void requireSameTotal(Margins const& margins) {
    double const origins = totalOf(margins.origins);
    if (std::abs(totalOf(margins.destinations) - origins) > tolerance * origins)
        throw std::invalid_argument("origins and destinations have different totals");
}

// The largest change of a factor as a share of it: what the rows are off by.
double largestChange(Figures const& before, Figures const& after) {
    double largest = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
        if (after[i] != 0) largest = std::max(largest, std::abs(before[i] / after[i] - 1));
    return largest;
}

}

SquareTable distribute(Margins const& margins, SquareTable const& deterrence) {
    requireSameTotal(margins);
    Figures rows = margins.origins;
    for (int round = 0; round < mostRounds; ++round) {
        auto const columns = quotients(margins.destinations, columnSums(deterrence, rows));
        auto const before = rows;
        rows = quotients(margins.origins, rowSums(deterrence, columns));
        if (largestChange(before, rows) < tolerance)
            return SquareTable::of(deterrence.size(),
                [&](std::size_t i, std::size_t j) { return before[i] * columns[j] * deterrence.at(i, j); });
    }
    throw std::runtime_error("origins and destinations are not balanced after 1000 rounds");
}

SquareTable deterrenceOf(Purpose purpose, SquareTable const& logsum) {
    double const sensitivity = sensitivities[static_cast<std::size_t>(purpose)];
    return SquareTable::of(
        logsum.size(), [&](std::size_t i, std::size_t j) { return std::exp(sensitivity * logsum.at(i, j)); });
}

}
