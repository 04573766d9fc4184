#pragma once

#include "tool/formats/Formats.h"
#include "tool/routes/RouteData.h"

#include <string>
#include <vector>

namespace cubes::tool {

/// Route data as comma-separated values: a line for each route under a header "route,NAME:TYPE,..."
/// with the type of each field, double when there is none. Routes are told by their numbers in the
/// set, from 0, each once, in any order.
///
/// Throws FormatError for a file that is missing or makes no sense, such as a value that its type
/// does not hold.
std::vector<RouteValues> readRouteDataCsv(std::string const& path, ShareDone const& shareDone);

/// Writes such a file, see writeRoutesCsv.
void writeRouteDataCsv(std::string const& path, std::vector<RouteValues> const& fields, ShareDone const& shareDone);

}
