#pragma once

#include <string>

namespace cubes::test {

/// What a process is to do. It sees nothing of the test but the text and its number.
using OwnWork = void (*)(std::string const& text, int number);

/// Runs `work` in that many processes at once, each with a library of its own and told its number from
/// 0, and gives how many of them ended well. They all wait until the last one is there. A process that
/// throws did not end well. A lambda without captures is such a work.
int inOwnProcesses(int count, OwnWork work, std::string const& text);

}
