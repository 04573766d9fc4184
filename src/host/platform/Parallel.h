#pragma once

#include <cstddef>
#include <functional>

namespace cubes::platform {

/// Does one piece of work, given its number.
using Worker = std::function<void(std::size_t)>;

/// Runs the pieces 0 to `count - 1`, each once, on all cores, and returns when all are done. Each thread has a worker
/// of its own, which may keep state between pieces. The first exception ends the work early and is thrown to the
/// caller.
void inParallel(std::size_t count, std::function<Worker()> const& newWorker);

}
