#pragma once

namespace cubes::platform {

/// How many forks lie between this process and the one that first asked. What was opened at a
/// smaller count belongs to a parent. Always 0 where processes cannot fork.
unsigned long forkCount() noexcept;

}
