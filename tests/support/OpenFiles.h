#pragma once

#include <string>

namespace cubes::test {

/// How often this process has the file open. Where the system only tells whether anyone has, 1 stands for it.
int openings(std::string const& path);

}
