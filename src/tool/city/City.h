#pragma once

#include "tool/city/Demand.h"
#include "tool/city/Zones.h"
#include "tool/formats/TripTable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cubes::tool {

/// A made-up city with its travel. Purposes, modes and periods are counted from 0.
struct City {
    std::vector<Zone> zones;
    std::vector<std::string> purposes;
    std::vector<std::string> modes;
    std::vector<std::string> periods;

    /// Trips a period from zone to zone.
    TripTable const& trips(int purpose, int mode, int period) const;
    /// Kilometres from zone to zone, the same in every period.
    TripTable const& distance(int mode, int period) const;
    /// Minutes from zone to zone.
    TripTable const& time(int mode, int period) const;
    /// Trips by car in the morning over the first link (0), and of those the trips that go on over
    /// the second (1).
    TripTable const& tripsOverLinks(int purpose, int link) const;
    /// What the trips of all modes add up to.
    Margins const& margins(int purpose, int period) const;

    // In the order of their arguments, the last one running fastest.
    std::vector<TripTable> tripTables;
    std::vector<TripTable> distanceTables;
    std::vector<TripTable> timeTables;
    std::vector<Margins> marginTable;
    std::vector<TripTable> linkTables;
};

/// How many purposes, modes or periods there are, and what one of them is called.
int count(std::vector<std::string> const& names);
std::string const& nameAt(std::vector<std::string> const& names, int index);

struct CityOptions {
    std::uint64_t seed = 1;
    /// At least 3.
    int zones = 200;
};

/// The same options make the same city, on every platform to the precision of its mathematical functions.
City makeCity(CityOptions const& options = {});

/// The largest difference between the trips that start or end in a zone and the margins they must
/// add up to, as a share of the margin.
double largestMarginError(City const& city);

}
