#pragma once

#include "tool/RouteEntries.h"

/// What the commands for routes share.
namespace cubes::tool {

/// A command "routes NAME".
class RoutesCommand : public Command {
public:
    using Command::Command;
    char const* groupSummary() const override { return "Store, show and use routes and their data"; }
};

}
