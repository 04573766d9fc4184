#pragma once

#include "tool/Catalogue.h"
#include "tool/routes/RouteFiles.h"

/// What the commands for routes share.
namespace cubes::tool {

/// A command "routes NAME".
class RoutesCommand : public Command {
public:
    using Command::Command;
    char const* groupSummary() const override { return "Store, show and use routes and route data"; }
};

/// Parses an entry of routes or route data. Throws Refusal for another.
EntryWord parseRoutes(std::string const& word);
/// Parses an entry of routes. Throws Refusal for another.
EntryWord parseRouteSet(std::string const& word);
/// The file of an entry. Throws Refusal when the entry is in use, Failure when it has no file.
std::string routeFileOf(Entry const& entry, Catalogue const& catalogue);

/// Whether the cube holds routes, not route data.
bool isRouteSet(Cube const& cube);
bool isRouteSet(CubeWord const& cube);
RouteKey routeKeyOf(Entry const& entry);
/// All routes of a set.
RouteList routesIn(RouteSetFile const& set);

}
