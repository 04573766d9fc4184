#pragma once

#include "tool/Catalogue.h"
#include "tool/routes/RouteFiles.h"

/// Entries of routes and route data, and their files.
namespace cubes::tool {

/// The word as an entry of routes or route data; Refusal for another.
EntryWord parseRoutes(std::string const& word);
/// The same; route data are refused too.
EntryWord parseRouteSet(std::string const& word);
/// Both refuse a text that is no number of one.
std::int32_t parseZone(std::string const& text);
std::uint32_t parseLink(std::string const& text);
/// The file of an entry that is there and not in use; Refusal and Failure otherwise.
std::string routeFileOf(Entry const& entry, Catalogue const& catalogue);

bool isRouteSet(Cube const& cube);
bool isRouteSet(CubeWord const& cube);
RouteKey routeKeyOf(Entry const& entry);
/// The routes of a set, read.
RouteList routesIn(RouteSetFile const& set);

}
