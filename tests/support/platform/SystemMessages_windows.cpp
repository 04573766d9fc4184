#include "support/SystemMessages.h"

#include <system_error>

#include <windows.h>

namespace cubes::test {

// Wine's messages are not those of Windows.
std::string noSuchFile() {
    return std::system_category().message(ERROR_FILE_NOT_FOUND);
}

// The C++ library omits the full stop.
std::string noSuchFileSentence() {
    return noSuchFile() + ".";
}

std::string noSuchDirectory() {
    return std::system_category().message(ERROR_PATH_NOT_FOUND);
}

std::string isADirectory() {
    return std::system_category().message(ERROR_ACCESS_DENIED);
}

}
