#include "tool/Terminal.h"

#include <cstdio>
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

}
