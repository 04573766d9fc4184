#pragma once

#include <string>

namespace cubes::test {

/// Runs a line of commands in the POSIX shell and returns its exit code. Paths in it are written as this program's own
/// system writes them.
int shell(std::string const& line);

/// The text with its paths as the shell writes them.
std::string withPathsOfTheShell(std::string text);

}
