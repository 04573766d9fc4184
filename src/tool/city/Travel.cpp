#include "tool/city/Travel.h"

#include "tool/city/Zones.h"

#include <algorithm>

namespace cubes::tool {

namespace {

constexpr std::size_t indexOf(Area area) {
    return static_cast<std::size_t>(area);
}
constexpr std::size_t indexOf(Mode mode) {
    return static_cast<std::size_t>(mode);
}
constexpr std::size_t indexOf(Period period) {
    return static_cast<std::size_t>(period);
}

// Network distance over crow-fly distance, by mode.
constexpr double detours[] = {1.25, 1.35, 1.2};

// Properties of a trip end by its area.
struct Surroundings {
    double freeSpeed;      // of cars, km/h
    double congestion;     // share of the period's delay that is felt here
    double parkingMinutes; // at the destination
    double stopMinutes;    // walking to or from a stop
};

constexpr Surroundings surroundings[] = {{26, 1, 6, 4}, {42, 0.7, 2, 7}, {58, 0.4, 2, 9}};

struct Rush {
    double delay;       // of cars in the centre, as a share of the time on free roads
    double waitMinutes; // for transit
};

constexpr Rush rushes[] = {{0.5, 5}, {0.15, 8}, {0.4, 6}};

constexpr double transitSpeed = 28;
constexpr double bikeSpeed = 15;
constexpr double unlockMinutes = 1;

Surroundings const& around(Zone const& zone) {
    return surroundings[indexOf(zone.area)];
}

double mean(double first, double second) {
    return (first + second) / 2;
}

double minutes(double kilometres, double kilometresPerHour) {
    return 60 * kilometres / kilometresPerHour;
}

double carTime(Zone const& from, Zone const& to, double distance, Rush const& rush) {
    double const speed = mean(around(from).freeSpeed, around(to).freeSpeed);
    double const delay = rush.delay * mean(around(from).congestion, around(to).congestion);
    return minutes(distance, speed) * (1 + delay) + around(to).parkingMinutes;
}

double transitTime(Zone const& from, Zone const& to, double distance, Rush const& rush) {
    return around(from).stopMinutes + rush.waitMinutes + minutes(distance, transitSpeed) + around(to).stopMinutes;
}

double bikeTime(Zone const&, Zone const&, double distance, Rush const&) {
    return unlockMinutes + minutes(distance, bikeSpeed);
}

constexpr decltype(&carTime) timeFunctions[] = {carTime, transitTime, bikeTime};

double crowDistanceToNearest(std::size_t zone, std::vector<Zone> const& zones) {
    double nearest = 1e9;
    for (std::size_t other = 0; other < zones.size(); ++other)
        if (other != zone) nearest = std::min(nearest, crowDistance(zones[zone].position, zones[other].position));
    return nearest;
}

}

SquareTable distancesBy(Mode mode, std::vector<Zone> const& zones) {
    double const detour = detours[indexOf(mode)];
    return SquareTable::of(zones.size(), [&](std::size_t from, std::size_t to) {
        if (from == to) return detour * crowDistanceToNearest(from, zones) / 2;
        return detour * crowDistance(zones[from].position, zones[to].position);
    });
}

SquareTable timesBy(Mode mode, Period period, std::vector<Zone> const& zones, SquareTable const& distances) {
    auto const& rush = rushes[indexOf(period)];
    auto const timeOf = timeFunctions[indexOf(mode)];
    return SquareTable::of(zones.size(),
        [&](std::size_t from, std::size_t to) { return timeOf(zones[from], zones[to], distances.at(from, to), rush); });
}

}
