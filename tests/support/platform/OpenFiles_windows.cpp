#include "support/OpenFiles.h"

#include <stdexcept>

#include <windows.h>

namespace cubes::test {

// Opening a file without sharing fails while it is open.
int openings(std::string const& path) {
    HANDLE const alone = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (alone != INVALID_HANDLE_VALUE) {
        CloseHandle(alone);
        return 0;
    }
    if (GetLastError() != ERROR_SHARING_VIOLATION) throw std::runtime_error("cannot open " + path);
    return 1;
}

}
