#pragma once

#include <string>

namespace cubes::test {

/// The system's own words for what can be wrong with a path.
std::string noSuchFile();
/// As a sentence, where the system makes it one.
std::string noSuchFileSentence();
std::string noSuchDirectory();
std::string isADirectory();
/// And with reading behind the end of a file.
std::string pastTheEnd();

}
