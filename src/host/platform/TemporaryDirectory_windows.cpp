#include "host/platform/TemporaryDirectory.h"

#include <windows.h>

namespace cubes::platform {

std::string temporaryDirectory() {
    char directory[260];
    // An answer that does not fit is told by the room that it needs, a failure by 0.
    DWORD const length = ::GetTempPathA(sizeof directory, directory);
    if (length == 0 || length >= sizeof directory) return "c:\\temp\\";
    return {directory, length};
}

}
