#pragma once

#include <cubes/Export.h>

namespace Pgaccess {
class TPgConnection;
}

/// The process-wide holder of the current connection. Not owned: who sets a connection takes it
/// back before it is destroyed (cubes::Project does so).
class CUBES_API TRkConnectionManager {
public:
    /// The current connection; null when there is none.
    Pgaccess::TPgConnection* CurrentConnection() const noexcept { return current_; }
    void SetCurrentConnection(Pgaccess::TPgConnection* connection) noexcept { current_ = connection; }

private:
    Pgaccess::TPgConnection* current_ = nullptr;
};

/// The one manager of this process.
CUBES_API TRkConnectionManager& getConnectionManagerInstance();
