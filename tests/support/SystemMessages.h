#pragma once

#include <string>

namespace cubes::test {

/// The system's own messages for what can be wrong with a path.
std::string noSuchFile();
/// As a sentence, if the system formats it as one.
std::string noSuchFileSentence();
std::string noSuchDirectory();
std::string isADirectory();

}
