#include "tool/city/City.h"

#include "tool/city/Demand.h"
#include "tool/city/Roads.h"
#include "tool/city/Zones.h"

#include <algorithm>
#include <cmath>

namespace cubes::tool {

namespace {

template <std::size_t Count>
std::vector<std::string> textsOf(std::array<char const*, Count> const& names) {
    return {names.begin(), names.end()};
}

TripTable rounded(SquareTable const& exact, std::vector<Zone> const& zones) {
    TripTable table;
    table.rows = table.columns = static_cast<int>(zones.size());
    for (auto const& zone : zones) table.zones.push_back(zone.number);
    table.cells.reserve(zones.size() * zones.size());
    for (std::size_t i = 0; i < zones.size(); ++i)
        for (std::size_t j = 0; j < zones.size(); ++j) table.cells.push_back(static_cast<float>(exact.at(i, j)));
    return table;
}

std::vector<TripTable> rounded(std::vector<SquareTable> const& tables, std::vector<Zone> const& zones) {
    std::vector<TripTable> result;
    for (auto const& table : tables) result.push_back(rounded(table, zones));
    return result;
}

std::vector<SquareTable> distancesOf(std::vector<Zone> const& zones) {
    std::vector<SquareTable> tables;
    for (std::size_t mode = 0; mode < modeNames.size(); ++mode)
        tables.push_back(distancesBy(static_cast<Mode>(mode), zones));
    return tables;
}

// By mode, in one period.
std::vector<SquareTable> timesOf(
    Period period, std::vector<Zone> const& zones, std::vector<SquareTable> const& distances) {
    std::vector<SquareTable> tables;
    for (std::size_t mode = 0; mode < modeNames.size(); ++mode)
        tables.push_back(timesBy(static_cast<Mode>(mode), period, zones, distances[mode]));
    return tables;
}

// The trips of a purpose in a period, by mode.
std::vector<SquareTable> tripsOf(Purpose purpose, Margins const& margins, std::vector<SquareTable> const& times,
    std::vector<SquareTable> const& distances) {
    auto choice = chooseModes(purpose, times, distances);
    auto const all = distribute(margins, deterrenceOf(purpose, choice.logsum));
    for (auto& share : choice.shares)
        for (std::size_t i = 0; i < all.size(); ++i)
            for (std::size_t j = 0; j < all.size(); ++j) share.at(i, j) *= all.at(i, j);
    return std::move(choice.shares);
}

constexpr std::size_t modeCount = modeNames.size();
constexpr std::size_t periodCount = periodNames.size();

std::size_t place(int mode, int period) {
    return static_cast<std::size_t>(mode) * periodCount + static_cast<std::size_t>(period);
}

std::size_t place(int purpose, int mode, int period) {
    return static_cast<std::size_t>(purpose) * modeCount * periodCount + place(mode, period);
}

void addPeriod(City& city, int period, std::vector<SquareTable> const& distances) {
    auto const times = timesOf(static_cast<Period>(period), city.zones, distances);
    for (int mode = 0; mode < static_cast<int>(modeCount); ++mode)
        city.timeTables[place(mode, period)] = rounded(times[static_cast<std::size_t>(mode)], city.zones);
    for (int purpose = 0; purpose < static_cast<int>(purposeNames.size()); ++purpose) {
        auto const margins = marginsOf(static_cast<Purpose>(purpose), static_cast<Period>(period), city.zones);
        auto const trips = tripsOf(static_cast<Purpose>(purpose), margins, times, distances);
        for (int mode = 0; mode < static_cast<int>(modeCount); ++mode)
            city.tripTables[place(purpose, mode, period)] = rounded(trips[static_cast<std::size_t>(mode)], city.zones);
        city.marginTable[place(purpose, period)] = margins;
    }
}

// Two links of one road to the centre: zones are numbered from there outward. In a city of few zones
// they begin at its last.
constexpr Link roadsIn[] = {{20, 4}, {4, 0}};

void addLinks(City& city) {
    int const last = static_cast<int>(city.zones.size()) - 1;
    int const car = static_cast<int>(Mode::car);
    int const morning = static_cast<int>(Period::morning);
    for (int purpose = 0; purpose < static_cast<int>(purposeNames.size()); ++purpose) {
        TripTable trips = city.trips(purpose, car, morning);
        for (auto const& road : roadsIn) {
            trips = tripsOver({std::min(road.from, last), std::min(road.to, last)}, trips, city.distance(car, morning));
            city.linkTables.push_back(trips);
        }
    }
}

// The trip ends of all modes in each zone.
Margins marginsFound(City const& city, int purpose, int period) {
    auto const size = city.zones.size();
    Margins found{std::vector<double>(size), std::vector<double>(size)};
    for (int mode = 0; mode < static_cast<int>(modeCount); ++mode) {
        auto const& trips = city.trips(purpose, mode, period);
        for (std::size_t i = 0; i < size; ++i)
            for (std::size_t j = 0; j < size; ++j) {
                double const value = trips.at(static_cast<int>(i), static_cast<int>(j));
                found.origins[i] += value;
                found.destinations[j] += value;
            }
    }
    return found;
}

double largestError(std::vector<double> const& found, std::vector<double> const& expected) {
    double largest = 0;
    for (std::size_t i = 0; i < found.size(); ++i)
        largest = std::max(largest, std::abs(found[i] - expected[i]) / std::max(expected[i], 1.0));
    return largest;
}

}

int count(std::vector<std::string> const& names) {
    return static_cast<int>(names.size());
}

std::string const& nameAt(std::vector<std::string> const& names, int index) {
    return names[static_cast<std::size_t>(index)];
}

TripTable const& City::trips(int purpose, int mode, int period) const {
    return tripTables[place(purpose, mode, period)];
}

TripTable const& City::distance(int mode, int) const {
    return distanceTables[static_cast<std::size_t>(mode)];
}

TripTable const& City::time(int mode, int period) const {
    return timeTables[place(mode, period)];
}

TripTable const& City::tripsOverLinks(int purpose, int link) const {
    return linkTables[static_cast<std::size_t>(purpose) * std::size(roadsIn) + static_cast<std::size_t>(link)];
}

Margins const& City::margins(int purpose, int period) const {
    return marginTable[place(purpose, period)];
}

City makeCity(CityOptions const& options) {
    Random random(options.seed);
    City city{layOutZones(options.zones, random), textsOf(purposeNames), textsOf(modeNames), textsOf(periodNames), {},
        {}, {}, {}, {}};
    auto const distances = distancesOf(city.zones);
    city.distanceTables = rounded(distances, city.zones);
    city.timeTables.resize(modeCount * periodCount);
    city.tripTables.resize(purposeNames.size() * modeCount * periodCount);
    city.marginTable.resize(purposeNames.size() * periodCount);
    for (int period = 0; period < static_cast<int>(periodCount); ++period) addPeriod(city, period, distances);
    addLinks(city);
    return city;
}

double largestMarginError(City const& city) {
    double largest = 0;
    for (int purpose = 0; purpose < static_cast<int>(city.purposes.size()); ++purpose)
        for (int period = 0; period < static_cast<int>(city.periods.size()); ++period) {
            auto const found = marginsFound(city, purpose, period);
            auto const& expected = city.margins(purpose, period);
            largest = std::max({largest, largestError(found.origins, expected.origins),
                largestError(found.destinations, expected.destinations)});
        }
    return largest;
}

}
