#pragma once

#include "host/database/CurrentConnection.h"

#include <optional>

class TRkGlobalSettings;

namespace cubes::catalogue {

/// One call of a cube object. Settings that a project made carry the project's connection: during the call it is the
/// current connection of this thread, whichever other projects the process has open. Settings from elsewhere leave the
/// current connection unchanged.
///
/// A call within a call changes nothing: the outermost one decides, so copies between two projects name and number
/// cubes by the register of the cube object that was called.
class ProjectCall {
public:
    /// `settings` may be null.
    explicit ProjectCall(TRkGlobalSettings const* settings);
    ~ProjectCall();
    ProjectCall(ProjectCall const&) = delete;
    ProjectCall& operator=(ProjectCall const&) = delete;

private:
    std::optional<database::CurrentConnection> override_;
};

}
