#include "tool/city/ModeChoice.h"

#include <cmath>

namespace cubes::tool {

namespace {

constexpr double perMinute = -0.06;
// Driving costs fuel, cycling costs strength; tickets are flat.
constexpr double perKilometre[] = {-0.03, 0, -0.08};

// What speaks for a mode besides time and distance; pupils hardly drive, shoppers carry bags.
constexpr double likings[][3] = {
    {0, 0.1, -0.4},
    {-1.8, 0.4, 0.2},
    {0.3, -0.4, -0.6},
    {0, -0.2, -0.3},
};

double utilityOf(Purpose purpose, std::size_t mode, double time, double distance) {
    return likings[static_cast<std::size_t>(purpose)][mode] + perMinute * time + perKilometre[mode] * distance;
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
            choice.ease.at(from, to) = std::log(sum);
        }
    return choice;
}

}
