#include "tool/CityRoutes.h"

#include "tool/Errors.h"
#include "tool/RouteEntries.h"
#include "tool/city/Roads.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

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
    if (!isAsStored) throw Failure(fmt::format("{} is not read back as it was stored", entry.text()));
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
