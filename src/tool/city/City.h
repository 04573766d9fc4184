#pragma once

#include "tool/city/Demand.h"
#include "tool/city/Zones.h"
#include "tool/formats/TripTable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cubes::tool {

/// A synthetic city and its demand and skim matrices. Purposes, modes and periods are counted from 0.
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
    /// Car trips in the morning over the first selected link (0), and over both (1).
    TripTable const& tripsOverLinks(int purpose, int link) const;
    /// The trip ends of all modes.
    Margins const& margins(int purpose, int period) const;

    // In the order of their arguments, the last one varying fastest.
    std::vector<TripTable> tripTables;
    std::vector<TripTable> distanceTables;
    std::vector<TripTable> timeTables;
    std::vector<Margins> marginTable;
    std::vector<TripTable> linkTables;
};

/// The number of purposes, modes or periods, and the name of one.
int count(std::vector<std::string> const& names);
std::string const& nameAt(std::vector<std::string> const& names, int index);

struct CityOptions {
    std::uint64_t seed = 1;
    /// At least 3.
    int zones = 200;
};

/// The same options make the same city, on every platform to the precision of its mathematical functions.
City makeCity(CityOptions const& options = {});

/// The largest relative error of the row and column totals against the productions and attractions.
double largestMarginError(City const& city);

}
