#pragma once

#include <cstddef>
#include <functional>

namespace cubes::platform {

/// Calls `work(0)` to `work(count - 1)`, each once, on all cores, and returns when all are done.
/// The first exception ends the work early and is thrown on.
void inParallel(std::size_t count, std::function<void(std::size_t)> const& work);

}
