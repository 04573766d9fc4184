#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace cubes::database {

/// How long an operation waits for a lock that others hold.
inline constexpr std::chrono::milliseconds defaultLockTimeout{10000};

/// The limit that CUBES_LOCK_TIMEOUT in the environment sets, in seconds; nothing when it is not set. Throws
/// TRkDatabaseException when it is not a number from 0.001 to 86400.
std::optional<std::chrono::milliseconds> givenLockTimeout();

/// "10 s", "30 ms".
std::string textOf(std::chrono::milliseconds time);

}
