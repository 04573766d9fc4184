#pragma once

#include "host/database/CurrentConnection.h"

#include <optional>

class TRkGlobalSettings;

namespace cubes::catalogue {

/// One call of a cube object. Settings that a project made carry the project's connection: while
/// the call lasts that one is the current connection of this thread, whatever other projects the
/// process has open. Settings from elsewhere leave the current connection as it is.
///
/// A call within a call changes nothing: the outermost one decides, so that copies between two
/// projects name and number cubes by the register of the cube object that was called.
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
