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

// The C library takes it for a wrong argument.
bool readerWentAway() {
    return _doserrno == ERROR_NO_DATA || _doserrno == ERROR_BROKEN_PIPE;
}

}
