#pragma once

#include "tool/city/Random.h"
#include "tool/city/Zone.h"

#include <vector>

namespace cubes::tool {

/// Zones of a made-up city: a dense centre full of jobs and shops, suburbs around it where most
/// people live, and towns farther out. Numbered from 1, from the centre outward.
/// REQUIRES: count is at least 3.
std::vector<Zone> layOutZones(int count, Random& random);

/// The distance between two points as the crow flies.
double crowDistance(Point const& from, Point const& to);

}
