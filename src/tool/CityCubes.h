#pragma once

#include "tool/Entry.h"
#include "tool/city/City.h"

#include <optional>
#include <string>
#include <vector>

namespace cubes::tool {

/// The cube that the city's trips go into.
constexpr char const* tripsCube = "Trips";

/// A matrix of the made-up city and the entry that it goes into.
struct CityMatrix {
    EntryWord entry;
    /// What it was derived from, if that is an entry too.
    std::optional<EntryWord> parent;
    /// Empty for what does not depend on the purpose.
    std::string purpose;
    std::string mode;
    std::string period;
    /// Lies in the city.
    TripTable const* table;
};

/// Every matrix of the city, parents before their children: the cube Trips, skims of distances
/// (result 1) and times (result 2), and what passes selected links on the way to the centre
/// (iteration 1: the first, iteration 2: of those, the second).
std::vector<CityMatrix> matricesOf(City const& city);

}
