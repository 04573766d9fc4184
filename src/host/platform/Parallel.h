#pragma once

#include <cstddef>
#include <functional>

namespace cubes::platform {

/// Does a piece of work, named by its number.
using Worker = std::function<void(std::size_t)>;

/// Has the pieces 0 to `count - 1` done, each once, on all cores, and returns when all are done.
/// Each thread works with a worker of its own, which may keep what it needs between pieces. The
/// first exception ends the work early and is thrown on.
void inParallel(std::size_t count, std::function<Worker()> const& newWorker);

}
