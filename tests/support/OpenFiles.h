#pragma once

#include <string>

namespace cubes::test {

/// How often this process has the file open. If the system only reports whether any process has it open, that counts as
/// 1.
int openings(std::string const& path);

}
