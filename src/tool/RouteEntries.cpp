#include "tool/RouteEntries.h"

#include "tool/Errors.h"
#include "tool/Kinds.h"
#include "tool/Paths.h"
#include "tool/formats/NumberText.h"

#include <cubes/catalogue/RkCubeTypes.h>

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace cubes::tool {

namespace {

template <typename Read>
auto number(char const* what, std::string const& text, Read const& read) {
    try {
        return read(text, Place{what, 0});
    } catch (FormatError const&) {
        throw Refusal(fmt::format("\"{}\" is no number of a {}", text, what));
    }
}

}

std::int32_t parseZone(std::string const& text) {
    return number("zone", text, zoneNumber);
}

std::uint32_t parseLink(std::string const& text) {
    return number("link", text, wholeNumber);
}

EntryWord parseRoutes(std::string const& word) {
    auto const entry = parseEntry(word);
    if (!entry.cube.kind || !entry.cube.kind->holdsRoutes) throw Refusal(fmt::format("{} holds no routes", word));
    return entry;
}

EntryWord parseRouteSet(std::string const& word) {
    auto const entry = parseRoutes(word);
    if (!isRouteSet(entry.cube)) throw Refusal(fmt::format("{} holds data of routes and no routes", word));
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
