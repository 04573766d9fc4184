#pragma once

#include "tool/Entry.h"
#include "tool/city/City.h"

#include <string>
#include <vector>

namespace cubes::tool {

/// The cube that the city's trips go into.
constexpr char const* tripsCube = "Trips";

/// A matrix of the made-up city and the entry that it goes into.
struct CityMatrix {
    EntryWord entry;
    /// Empty for what does not depend on the purpose.
    std::string purpose;
    std::string mode;
    std::string period;
    /// Lies in the city.
    TripTable const* table;
};

/// Every matrix of the city: the cubes Trips, Distance and Time.
std::vector<CityMatrix> matricesOf(City const& city);

}
