#pragma once

#include "tool/formats/TripTable.h"
#include "tool/routes/RouteFiles.h"

namespace cubes::tool {

/// The trips that pass a link: of each pair of zones the shares whose routes lead over it. Zones
/// are known by their numbers, by their positions from 1 in a table without. Throws Failure for a
/// route from or to a zone that the table has not.
TripTable tripsOverLink(RouteSetFile const& routes, std::uint32_t link, TripTable const& trips);

}
