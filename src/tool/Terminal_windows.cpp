#include "tool/Terminal.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>

#include <windows.h>

namespace cubes::tool {

void prepareStreams() {
    ::_setmode(::_fileno(stdout), _O_BINARY);
    ::_setmode(::_fileno(stderr), _O_BINARY);
    ::SetConsoleOutputCP(::GetACP());
}

bool messagesAreWatched() {
    return ::_isatty(::_fileno(stderr)) != 0;
}

// The C library takes it for a wrong argument. Wine has the last of these errors for it.
bool readerWentAway() {
    auto const error = _doserrno;
    return error == ERROR_NO_DATA || error == ERROR_BROKEN_PIPE || error == ERROR_PIPE_NOT_CONNECTED;
}

}
