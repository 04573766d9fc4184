#include "tool/city/Roads.h"

#include "tool/city/Zones.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <queue>
#include <set>

namespace cubes::tool {

namespace {

constexpr std::size_t neighbours = 4;
constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

/// The zones nearest to one, by their indices.
std::vector<int> nearest(std::vector<Zone> const& zones, int zone) {
    std::vector<int> others(zones.size());
    std::iota(others.begin(), others.end(), 0);
    auto const distance = [&](int other) {
        return crowDistance(
            zones[static_cast<std::size_t>(zone)].position, zones[static_cast<std::size_t>(other)].position);
    };
    std::stable_sort(others.begin(), others.end(), [&](int a, int b) { return distance(a) < distance(b); });
    std::erase(others, zone);
    others.resize(std::min(neighbours, others.size()));
    return others;
}

/// Pairs of zones with a road between them. The zones before a zone reach it, so that all are joined.
std::set<std::pair<int, int>> joinedPairs(std::vector<Zone> const& zones) {
    std::set<std::pair<int, int>> pairs;
    auto const join = [&](int a, int b) { pairs.insert({std::min(a, b), std::max(a, b)}); };
    for (int zone = 0; zone < static_cast<int>(zones.size()); ++zone) {
        for (int const other : nearest(zones, zone)) join(zone, other);
        if (zone == 0) continue;
        std::vector<Zone> const inner(zones.begin(), zones.begin() + zone + 1);
        join(zone, nearest(inner, zone).front());
    }
    return pairs;
}

}

Roads::Roads(std::vector<Zone> const& zones) : leaving_(zones.size()) {
    auto const add = [&](int from, int to) {
        leaving_[static_cast<std::size_t>(from)].push_back(roads_.size());
        roads_.push_back({from, to,
            crowDistance(
                zones[static_cast<std::size_t>(from)].position, zones[static_cast<std::size_t>(to)].position)});
    };
    for (auto const& [a, b] : joinedPairs(zones)) {
        add(a, b);
        add(b, a);
    }
}

// Dijkstra: the last road of the shortest path by distance to each zone.
std::vector<std::size_t> Roads::lastRoadsOfShortestPaths(int origin, std::size_t zones) const {
    std::vector<double> length(zones, std::numeric_limits<double>::infinity());
    std::vector<std::size_t> last(zones, none);
    using Reached = std::pair<double, int>;
    std::priority_queue<Reached, std::vector<Reached>, std::greater<>> open;
    length[static_cast<std::size_t>(origin)] = 0;
    open.emplace(0.0, origin);
    while (!open.empty()) {
        auto const [way, zone] = open.top();
        open.pop();
        if (way > length[static_cast<std::size_t>(zone)]) continue;
        for (auto const place : leaving_[static_cast<std::size_t>(zone)]) {
            auto const to = static_cast<std::size_t>(roads_[place].to);
            double const longer = way + roads_[place].kilometres;
            if (longer >= length[to]) continue;
            length[to] = longer;
            last[to] = place;
            open.emplace(longer, roads_[place].to);
        }
    }
    return last;
}

RouteList Roads::shortestRoutes(std::vector<Zone> const& zones) const {
    RouteList routes;
    for (int origin = 0; origin < static_cast<int>(zones.size()); ++origin) {
        auto const last = lastRoadsOfShortestPaths(origin, zones.size());
        for (int destination = 0; destination < static_cast<int>(zones.size()); ++destination) {
            if (destination == origin) continue;
            std::vector<std::uint32_t> links;
            for (int zone = destination; zone != origin; zone = roads_[static_cast<std::size_t>(links.back() - 1)].from)
                links.push_back(static_cast<std::uint32_t>(last[static_cast<std::size_t>(zone)] + 1));
            routes.begin(
                zones[static_cast<std::size_t>(origin)].number, zones[static_cast<std::size_t>(destination)].number, 1);
            for (auto link = links.rbegin(); link != links.rend(); ++link) routes.addLink(*link);
        }
    }
    return routes;
}

double Roads::kilometres(RouteList::Route const& route) const {
    return std::accumulate(route.links.begin(), route.links.end(), 0.0,
        [&](double sum, std::uint32_t link) { return sum + roads_[link - 1].kilometres; });
}

namespace {

constexpr float accepted = 1.05f;

}

TripTable tripsOver(Link const& link, TripTable const& trips, TripTable const& distance) {
    // The diagonal of a skim is the intrazonal distance, which does not count on the way to the link.
    auto const way = [&](int from, int to) { return from == to ? 0 : distance.at(from, to); };
    float const length = way(link.from, link.to);
    TripTable passing = trips;
    for (int origin = 0; origin < trips.rows; ++origin)
        for (int destination = 0; destination < trips.columns; ++destination) {
            float const over = way(origin, link.from) + length + way(link.to, destination);
            if (origin == destination || over > accepted * way(origin, destination))
                passing.at(origin, destination) = 0;
        }
    return passing;
}

}
