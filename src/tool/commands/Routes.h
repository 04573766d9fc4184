#pragma once

#include "tool/Entries.h"
#include "tool/routes/RouteFiles.h"

/// What the commands for routes share.
namespace cubes::tool {

/// A command "routes NAME".
class RoutesCommand : public Command {
public:
    using Command::Command;
    char const* groupSummary() const override { return "Store, show and use routes and route data"; }
};

/// Throw Refusal for a word written as another entry than one of routes or route data, and than one of
/// routes.
void requireRoutes(std::string const& word, Surroundings const& surroundings);
void requireRouteSet(std::string const& word, Surroundings const& surroundings);
/// Whether a word names routes, not route data.
bool isRouteSet(std::string const& word);

/// The entry that a word stands for, with its file. Throws Refusal when it is in use, Failure when it
/// has no file.
EntryInfo findRoutes(std::string const& word, Entries const& entries);
/// Reads the file of an entry of routes or route data as a whole; throws Failure when it is damaged. Without a
/// provider, which alone can read it, nothing is read.
void verifyRoutes(EntryInfo const& entry);
/// The key as route files record it.
RouteKey routeKeyOf(EntryKey const& entry);
/// All routes of a set.
RouteList routesIn(RouteSetFile const& set);

}
