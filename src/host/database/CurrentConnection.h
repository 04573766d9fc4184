#pragma once

#include <cstdint>

namespace Pgaccess {
class TPgConnection;
}

namespace cubes::database {

/// What one thread holds as its current connection. A connection is known by its number as well,
/// because a later one may be made at the same address.
struct ThreadConnection {
    Pgaccess::TPgConnection* connection = nullptr;
    std::uint64_t number = 0;
    /// How many connections had been destroyed when this one was last known to be alive.
    std::uint64_t checkedAt = 0;
    /// Without a connection, the process-wide one counts once more than this many were set.
    std::uint64_t ignoredSets = 0;
};

/// Makes a connection (null: none) the current one of this thread only, for a scope. Scopes nest.
class CurrentConnection {
public:
    explicit CurrentConnection(Pgaccess::TPgConnection* connection) noexcept;
    ~CurrentConnection();
    CurrentConnection(CurrentConnection const&) = delete;
    CurrentConnection& operator=(CurrentConnection const&) = delete;

private:
    ThreadConnection before_;
};

/// Called by each connection once it is open, and before it is closed.
void announceOpened(std::uint64_t number);
void announceClosing(Pgaccess::TPgConnection& connection) noexcept;

}
