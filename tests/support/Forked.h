#pragma once

#include <functional>

namespace cubes::test {

/// Only where a process can divide; elsewhere there are Errands.
/// Runs `work` in that many processes at once, each told its number from 0, and gives how many
/// of them ended well. They all wait until the last one is there. A process that throws or has failed tests did not
/// end well.
/// What was opened before must not be used in `work`: each process opens its own.
int inProcesses(int count, std::function<void(int)> const& work);

}
