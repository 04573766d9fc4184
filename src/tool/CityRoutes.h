#pragma once

#include "tool/Catalogue.h"
#include "tool/city/City.h"

namespace cubes::tool {

/// The made-up city's routes by car and their data, and the entries that they go into.
constexpr char const* cityRoutes = "routes/1/1/1/1/1/1";
constexpr char const* cityRouteData = "routedata/1/1/1/1/1/1";

/// Stores the shortest routes between all zones, derived from the distances, and the length of each
/// route, derived from the routes. Reads both back; Failure when they are not what was stored. Gives
/// the number of routes.
std::size_t storeRoutes(City const& city, Catalogue& catalogue);

}
