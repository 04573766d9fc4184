#include "tool/CityCubes.h"

#include "tool/Errors.h"
#include "tool/city/Roads.h"
#include "tool/commands/Routes.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

constexpr short onlyUser = 1;
constexpr short noPurpose = 1;
constexpr short distanceResult = 1;
constexpr short timeResult = 2;
constexpr short firstIteration = 1;

short numberAt(int index) {
    return static_cast<short>(index + 1);
}

EntryWord tripsAt(int purpose, int mode, int period) {
    return {{tripsCube, std::nullopt}, {numberAt(purpose), numberAt(mode), numberAt(period), onlyUser}};
}

EntryWord skimAt(int mode, int period, short result) {
    return {parseCube("skim"), {noPurpose, numberAt(mode), numberAt(period), onlyUser, result, firstIteration}};
}

EntryWord selectedLinkAt(int purpose, short iteration) {
    return {parseCube("selectedlink"), {numberAt(purpose), 1, 1, onlyUser, 1, iteration}};
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
            auto const add = [&](EntryWord const& entry, std::optional<EntryWord> const& parent,
                                 TripTable const& table) {
                matrices.push_back({entry, parent, "", nameAt(city.modes, mode), nameAt(city.periods, period), &table});
            };
            add(distance, {}, city.distance(mode, period));
            add(skimAt(mode, period, timeResult), distance, city.time(mode, period));
        }
}

void addSelectedLinks(City const& city, std::vector<CityMatrix>& matrices) {
    for (int purpose = 0; purpose < count(city.purposes); ++purpose) {
        EntryWord parent = tripsAt(purpose, 0, 0);
        for (int link : {0, 1}) {
            auto const entry = selectedLinkAt(purpose, numberAt(link));
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

void require(bool isAsStored, Entry const& entry) {
    if (!isAsStored) throw Failure(fmt::format("{} was read back with other values than stored", entry.text()));
}

}

std::size_t storeRoutes(City const& city, Catalogue& catalogue) {
    Roads const roads(city.zones);
    auto const routes = roads.shortestRoutes(city.zones);
    auto const data = dataOf(routes, roads);
    auto const set = catalogue.storeRoutes(parseEntry(cityRoutes),
        [&](Entry const& entry, std::string const& path) { writeRouteSet(path, routeKeyOf(entry), routes); });
    auto const values = catalogue.storeRoutes(parseEntry(cityRouteData),
        [&](Entry const& entry, std::string const& path) { writeRouteData(path, routeKeyOf(entry), data); });
    catalogue.setParent(set, numbersOf(catalogue.entry(parseEntry(carDistances))));
    catalogue.setParent(values, numbersOf(set));
    require(isStored(routes, RouteSetFile(catalogue.path(set))), set);
    require(isStored(data, readRouteData(catalogue.path(values))), values);
    return routes.size();
}

}
