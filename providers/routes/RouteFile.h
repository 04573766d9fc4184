#pragma once

#include "Hdf5.h"
#include "RouteIndex.h"

/// How a set of routes lies in a file: see docs/route-file.md.
namespace cubes::routes {

constexpr char const* routeFileKind = "cubes routes";

void writeRoutes(hid_t file, RouteTable const& table, RouteIndex const& index);
/// Both throw std::runtime_error when the file does not hold what they expect.
RouteTable readRoutes(hid_t file);
RouteIndex readIndex(hid_t file, RouteTable const& table);

}
