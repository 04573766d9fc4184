#include "tool/city/Zones.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace cubes::tool {

namespace {

// What a zone of an area holds on average.
struct LandUse {
    Area area;
    double residents;
    double jobs;
    double schoolPlaces;
    double shopSpace;
};

constexpr LandUse landUses[] = {
    {Area::centre, 2500, 4500, 600, 6000},
    {Area::suburb, 4000, 1200, 700, 1500},
    {Area::town, 3000, 1400, 650, 1800},
};

constexpr double centreRadius = 2.5;
constexpr double cityRadius = 10;
constexpr double townRadius = 2;
constexpr Point towns[] = {{19, 6}, {-8, 18}, {-21, -7}, {6, -17}};
constexpr int townCount = static_cast<int>(std::size(towns));
constexpr int candidates = 8;

// A point between two radii around a middle, evenly spread over the ring's surface.
Point pointInRing(Point const& middle, double inner, double outer, Random& random) {
    double const radius = std::sqrt(random.between(inner * inner, outer * outer));
    double const angle = random.between(0, 2 * std::numbers::pi);
    return {middle.x + radius * std::cos(angle), middle.y + radius * std::sin(angle)};
}

Point placeIn(Area area, int index, Random& random) {
    if (area == Area::centre) return pointInRing({}, 0, centreRadius, random);
    if (area == Area::suburb) return pointInRing({}, centreRadius, cityRadius, random);
    return pointInRing(towns[index % townCount], 0, townRadius, random);
}

double distanceToNearest(Point const& point, std::vector<Zone> const& zones) {
    double nearest = 1e9;
    for (auto const& zone : zones) nearest = std::min(nearest, crowDistance(point, zone.position));
    return nearest;
}

// The best of some candidates, the one farthest from all zones there are (Mitchell 1991), so that
// zones neither clot nor stand in a grid.
Point spreadPlace(Area area, std::vector<Zone> const& zones, Random& random) {
    Point best = placeIn(area, static_cast<int>(zones.size()), random);
    for (int i = 1; i < candidates; ++i) {
        Point const other = placeIn(area, static_cast<int>(zones.size()), random);
        if (distanceToNearest(other, zones) > distanceToNearest(best, zones)) best = other;
    }
    return best;
}

Zone makeZone(LandUse const& use, std::vector<Zone> const& zones, Random& random) {
    auto const about = [&](double average) { return std::round(average * random.between(0.4, 1.6)); };
    Zone zone;
    zone.number = static_cast<std::int32_t>(zones.size()) + 1;
    zone.area = use.area;
    zone.position = spreadPlace(use.area, zones, random);
    zone.residents = about(use.residents);
    zone.jobs = about(use.jobs);
    zone.schoolPlaces = about(use.schoolPlaces);
    zone.shopSpace = about(use.shopSpace);
    return zone;
}

// A fifth of the zones are the centre, a quarter the towns.
Area areaOf(int index, int count) {
    if (index < std::max(1, count / 5)) return Area::centre;
    return index < count - count / 4 ? Area::suburb : Area::town;
}

}

std::vector<Zone> layOutZones(int count, Random& random) {
    std::vector<Zone> zones;
    for (int i = 0; i < count; ++i)
        zones.push_back(makeZone(landUses[static_cast<int>(areaOf(i, count))], zones, random));
    return zones;
}

double crowDistance(Point const& from, Point const& to) {
    return std::hypot(to.x - from.x, to.y - from.y);
}

}
