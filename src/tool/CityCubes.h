#pragma once

#include "tool/Entries.h"
#include "tool/city/City.h"

#include <optional>
#include <string>
#include <vector>

namespace cubes::tool {

/// The cube of the trip tables.
constexpr char const* tripsCube = "Trips";

/// A matrix of the synthetic city and its entry.
struct CityMatrix {
    std::string entry;
    /// The entry that it was derived from, if any.
    std::optional<std::string> parent;
    /// Empty where the matrix does not depend on the purpose.
    std::string purpose;
    std::string mode;
    std::string period;
    /// Part of the city.
    TripTable const* table;
};

/// Every matrix of the city, parents before their children: the cube Trips, skims of distances
/// (result 1) and times (result 2), and the trips over two selected links to the centre (iteration 1: over
/// the first, iteration 2: over both).
std::vector<CityMatrix> matricesOf(City const& city);

/// The entries of the car routes and their data.
constexpr char const* cityRoutes = "routes/1/1/1/1/1/1";
constexpr char const* cityRouteData = "routedata/1/1/1/1/1/1";

/// Stores the shortest routes between all zones, derived from the distances, and the length of each
/// route, derived from the routes. Reads both back and throws Failure when they differ. Returns the
/// number of routes.
std::size_t storeRoutes(City const& city, Entries const& entries);

}
