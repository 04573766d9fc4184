#pragma once

#include "tool/formats/TripTable.h"

namespace cubes::tool {

/// A stretch of road from one zone to another, by their indices.
struct Link {
    int from = 0;
    int to = 0;
};

/// The trips that pass the link: those of the pairs for which the way over it is at most a twentieth
/// longer than the shortest one.
TripTable tripsOver(Link const& link, TripTable const& trips, TripTable const& distance);

}
