#include "tool/commands/Routes.h"

#include "tool/Errors.h"
#include "tool/Kinds.h"
#include "tool/Paths.h"

#include <cubes/catalogue/RkCubeTypes.h>

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace cubes::tool {

EntryWord parseRoutes(std::string const& word) {
    auto const entry = parseEntry(word);
    if (!entry.cube.kind || !entry.cube.kind->holdsRoutes) throw Refusal(fmt::format("{} does not hold routes", word));
    return entry;
}

EntryWord parseRouteSet(std::string const& word) {
    auto const entry = parseRoutes(word);
    if (!isRouteSet(entry.cube)) throw Refusal(fmt::format("{} holds route data, not routes", word));
    return entry;
}

std::string routeFileOf(Entry const& entry, Catalogue const& catalogue) {
    catalogue.refuseUse(entry);
    auto const file = catalogue.path(entry);
    if (file.empty()) throw Failure("its row names no file inside its directory");
    std::error_code ignored;
    if (!std::filesystem::exists(toPath(file), ignored)) throw Failure(fmt::format("there is no file {}", file));
    return file;
}

bool isRouteSet(Cube const& cube) {
    return cube.number == ctRouteSet;
}

bool isRouteSet(CubeWord const& cube) {
    return cube.kind && cube.kind->number == ctRouteSet;
}

RouteKey routeKeyOf(Entry const& entry) {
    RouteKey key{entry.cube.number, {}};
    std::copy(entry.key.begin(), entry.key.end(), key.key.begin());
    return key;
}

RouteList routesIn(RouteSetFile const& set) {
    RouteList routes;
    for (std::size_t number = 0; number < set.size(); ++number) {
        auto const one = set.route(number);
        routes.begin(one.origin, one.destination, one.share);
        for (auto const link : one.links) routes.addLink(link);
    }
    return routes;
}

}
