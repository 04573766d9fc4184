#pragma once

#include "tool/Progress.h"
#include "tool/routes/RouteFiles.h"

#include <string>
#include <vector>

/// Routes and route data as comma-separated values. Everything throws FormatError for a file that cannot
/// be read or written, or that is not of its format; a failed write leaves an old file unchanged.
namespace cubes::tool {

/// Reads routes under the header "origin,destination,route,sequence,link,share", its columns in any order:
/// a line for each link of a route. `route` distinguishes the routes of an OD pair, `sequence` orders the
/// links of a route, `share` is the same in all lines of one. A route without links is a line with
/// neither sequence nor link. Lines may be in any order; routes are numbered as they first appear.
RouteList readRoutesCsv(std::string const& path, ProgressCallback const& progress);

/// Writes such a file, with routes and sequences counted from 1.
void writeRoutesCsv(std::string const& path, RouteList const& routes, ProgressCallback const& progress);

/// Reads route data: a line for each route under a header "route,NAME:TYPE,..." with the type of each
/// field, double by default. Routes are identified by their numbers in the set, from 0, each once, in
/// any order. A value out of the range of its type is an error.
std::vector<RouteValues> readRouteDataCsv(std::string const& path, ProgressCallback const& progress);
void writeRouteDataCsv(
    std::string const& path, std::vector<RouteValues> const& fields, ProgressCallback const& progress);

/// "boolean", "bytes", "smalint", "integer", "float" or "double", as field metadata call it.
char const* typeName(VL::Interface::RouteFieldType type);

}
