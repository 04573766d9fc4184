#pragma once

#include <functional>

namespace cubes::test {

/// Runs `work` in `count` forked processes at once and returns how many of them succeeded; each gets its number, from
/// 0. They start when the last one exists. A process that throws or has failed tests exits with an error.
/// REQUIRES: a platform that forks (elsewhere use ChildTask), and `work` uses nothing that was opened before: each
/// process opens its own.
int inProcesses(int count, std::function<void(int)> const& work);

}
