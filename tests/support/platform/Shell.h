#pragma once

#include <string>

namespace cubes::test {

/// Runs a line of commands in the POSIX shell and gives its exit code once it has ended. Paths in it
/// are written as this program's own system writes them.
int shell(std::string const& line);

/// The text with its paths as the shell writes them.
std::string withPathsOfTheShell(std::string text);

}
