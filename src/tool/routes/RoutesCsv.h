#pragma once

#include "tool/formats/Formats.h"
#include "tool/routes/RouteList.h"

#include <string>

namespace cubes::tool {

/// Routes as comma-separated values under the header "origin,destination,route,sequence,link,share", its
/// columns in any order: a line for each link of a route. `route` tells the routes of a pair of
/// zones apart, `sequence` orders the links of a route, `share` is the same in all lines of one.
/// A route without links is a line with neither sequence nor link. Lines stand in any order; routes
/// are numbered as they first appear.
///
/// Throws FormatError for a file that is missing or makes no sense.
RouteList readRoutesCsv(std::string const& path, ShareDone const& shareDone);

/// Writes such a file: routes and sequences counted from 1. A file that is there is replaced when
/// the new one is complete. Throws FormatError.
void writeRoutesCsv(std::string const& path, RouteList const& routes, ShareDone const& shareDone);

}
