#pragma once

#include <cubes/Export.h>

namespace Pgaccess {
class TPgConnection;
}

/// Holds the current connection: one per thread, with a process-wide fallback. Never owns it; a destroyed connection is
/// no longer current in any thread. Any thread may call at any time.
class CUBES_API TRkConnectionManager {
public:
    /// The connection that this thread set; if it set none, the one that any thread set last. Null when there is none.
    Pgaccess::TPgConnection* CurrentConnection() const noexcept;
    /// Sets the current connection of this thread and the process-wide one. Null leaves this thread
    /// without one until a connection is set in any thread, so that it does not go on in another
    /// thread's database; the process-wide one is cleared only where it is this thread's own.
    void SetCurrentConnection(Pgaccess::TPgConnection* connection) noexcept;
};

/// The one manager of this process.
CUBES_API TRkConnectionManager& getConnectionManagerInstance();
