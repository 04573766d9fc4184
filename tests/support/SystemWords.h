#pragma once

#include <string>

namespace cubes::test {

/// The system's own words for what can be wrong with a path.
std::string noSuchFile();
std::string noSuchDirectory();
std::string isADirectory();

}
