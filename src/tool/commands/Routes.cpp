#include "tool/commands/Routes.h"

#include "host/platform/Files.h"
#include "tool/Errors.h"

#include <cubes/catalogue/RkCubeTypes.h>
#include <cubes/routestorage/DynamiclinkLibraryT.h>

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

void requireRoutes(std::string const& word, Surroundings const& surroundings) {
    requireEntry(word, surroundings);
    auto const kind = resultKindOf(word);
    if (!kind || !kind->holdsRoutes) throw Refusal(fmt::format("{} does not hold routes", word));
}

void requireRouteSet(std::string const& word, Surroundings const& surroundings) {
    requireRoutes(word, surroundings);
    if (!isRouteSet(word)) throw Refusal(fmt::format("{} holds route data, not routes", word));
}

bool isRouteSet(std::string const& word) {
    auto const kind = resultKindOf(word);
    return kind && kind->number == ctRouteSet;
}

EntryInfo findRoutes(std::string const& word, Entries const& entries) {
    auto found = entries.findReadable(word);
    if (found.file.empty())
        throw Failure(
            fmt::format("its row names the file \"{}\", which is not inside its directory", found.storedName));
    if (!platform::exists(found.file)) throw Failure("there is no file " + found.file);
    return found;
}

void verifyRoutes(EntryInfo const& entry) {
    try {
        isRouteSet(entry.text) ? verifyRouteSet(entry.file) : verifyRouteData(entry.file);
    } catch (DllNotLoaded const&) {
        // It stays unverified.
    }
}

RouteKey routeKeyOf(EntryKey const& entry) {
    RouteKey key{entry.cube(), {}};
    std::ranges::copy(entry.parts(), key.key.begin());
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
