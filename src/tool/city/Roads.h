#pragma once

#include "tool/city/Zones.h"
#include "tool/formats/TripTable.h"
#include "tool/routes/RouteFiles.h"

#include <vector>

namespace cubes::tool {

/// The city's roads: from each zone to the nearest ones and back, numbered from 1.
class Roads {
public:
    struct Road {
        int from = 0;
        int to = 0;
        double kilometres = 0;
    };

    explicit Roads(std::vector<Zone> const& zones);

    std::vector<Road> const& roads() const noexcept { return roads_; }
    /// The shortest routes by car between all zones, with the share 1.
    RouteList shortestRoutes(std::vector<Zone> const& zones) const;
    /// The length of a route.
    double kilometres(RouteList::Route const& route) const;

private:
    std::vector<std::size_t> lastRoadsOfShortestPaths(int origin, std::size_t zones) const;

    std::vector<Road> roads_;
    /// The roads that begin in a zone, by their indices in roads_.
    std::vector<std::vector<std::size_t>> leaving_;
};

/// A link from one zone to another, by their indices.
struct Link {
    int from = 0;
    int to = 0;
};

/// Select link analysis: the trips of the OD pairs whose path over the link is at most 5 % longer than the
/// shortest path.
TripTable tripsOver(Link const& link, TripTable const& trips, TripTable const& distance);

}
