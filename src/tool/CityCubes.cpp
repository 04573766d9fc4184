#include "tool/CityCubes.h"

#include "tool/Errors.h"
#include "tool/city/Roads.h"
#include "tool/commands/Routes.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

constexpr int onlyUser = 1;
constexpr int noPurpose = 1;
constexpr int distanceResult = 1;
constexpr int timeResult = 2;
constexpr int firstIteration = 1;

std::string tripsAt(int purpose, int mode, int period) {
    return fmt::format("{}/{}/{}/{}/{}", tripsCube, purpose + 1, mode + 1, period + 1, onlyUser);
}

std::string skimAt(int mode, int period, int result) {
    return fmt::format("skim/{}/{}/{}/{}/{}/{}", noPurpose, mode + 1, period + 1, onlyUser, result, firstIteration);
}

std::string selectedLinkAt(int purpose, int iteration) {
    return fmt::format("selectedlink/{}/1/1/{}/1/{}", purpose + 1, onlyUser, iteration);
}

void addTrips(City const& city, std::vector<CityMatrix>& matrices) {
    for (int purpose = 0; purpose < count(city.purposes); ++purpose)
        for (int mode = 0; mode < count(city.modes); ++mode)
            for (int period = 0; period < count(city.periods); ++period)
                matrices.push_back({tripsAt(purpose, mode, period), {}, nameAt(city.purposes, purpose),
                    nameAt(city.modes, mode), nameAt(city.periods, period), &city.trips(purpose, mode, period)});
}

// Times are computed from distances.
void addSkims(City const& city, std::vector<CityMatrix>& matrices) {
    for (int mode = 0; mode < count(city.modes); ++mode)
        for (int period = 0; period < count(city.periods); ++period) {
            auto const distance = skimAt(mode, period, distanceResult);
            auto const add = [&](std::string const& entry, std::optional<std::string> const& parent,
                                 TripTable const& table) {
                matrices.push_back({entry, parent, "", nameAt(city.modes, mode), nameAt(city.periods, period), &table});
            };
            add(distance, {}, city.distance(mode, period));
            add(skimAt(mode, period, timeResult), distance, city.time(mode, period));
        }
}

void addSelectedLinks(City const& city, std::vector<CityMatrix>& matrices) {
    for (int purpose = 0; purpose < count(city.purposes); ++purpose) {
        std::string parent = tripsAt(purpose, 0, 0);
        for (int link : {0, 1}) {
            auto const entry = selectedLinkAt(purpose, link + 1);
            matrices.push_back({entry, parent, nameAt(city.purposes, purpose), city.modes.front(), city.periods.front(),
                &city.tripsOverLinks(purpose, link)});
            parent = entry;
        }
    }
}

}

std::vector<CityMatrix> matricesOf(City const& city) {
    std::vector<CityMatrix> matrices;
    addTrips(city, matrices);
    addSkims(city, matrices);
    addSelectedLinks(city, matrices);
    return matrices;
}

namespace {

constexpr char const* carDistances = "skim/1/1/1/1/1/1";

std::vector<RouteValues> dataOf(RouteList const& routes, Roads const& roads) {
    RouteValues kilometres{"kilometres", VL::Interface::rftFloat, {}};
    RouteValues links{"links", VL::Interface::rftInteger, {}};
    for (std::size_t i = 0; i < routes.size(); ++i) {
        kilometres.values.push_back(static_cast<double>(static_cast<float>(roads.kilometres(routes[i]))));
        links.values.push_back(static_cast<double>(routes[i].links.size()));
    }
    return {kilometres, links};
}

bool areSame(RouteList::Route const& a, RouteList::Route const& b) {
    return a.origin == b.origin && a.destination == b.destination && a.share == b.share &&
           std::ranges::equal(a.links, b.links);
}

bool isStored(RouteList const& routes, RouteSetFile const& set) {
    if (set.size() != routes.size()) return false;
    for (std::size_t i = 0; i < routes.size(); ++i)
        if (!areSame(routes[i], set.route(i))) return false;
    return true;
}

bool isStored(std::vector<RouteValues> const& data, std::vector<RouteValues> const& stored) {
    return std::ranges::equal(data, stored, [](RouteValues const& a, RouteValues const& b) {
        return a.name == b.name && a.type == b.type && a.values == b.values;
    });
}

void require(bool isAsStored, EntryInfo const& entry) {
    if (!isAsStored) throw Failure(fmt::format("{} was read back with other values than stored", entry.text));
}

}

std::size_t storeRoutes(City const& city, Entries const& entries) {
    Roads const roads(city.zones);
    auto const routes = roads.shortestRoutes(city.zones);
    auto const data = dataOf(routes, roads);
    auto& store = entries.store();
    auto const set = entries.write(cityRoutes, [&](EntryKey const& key) {
        store.putFile(key, [&](std::string const& path) { writeRouteSet(path, routeKeyOf(key), routes); },
            {.parent = store.parse(carDistances)});
    });
    auto const values = entries.write(cityRouteData, [&](EntryKey const& key) {
        store.putFile(
            key, [&](std::string const& path) { writeRouteData(path, routeKeyOf(key), data); }, {.parent = set.key});
    });
    require(isStored(routes, RouteSetFile(set.file)), set);
    require(isStored(data, readRouteData(values.file)), values);
    return routes.size();
}

}
