#include "tool/Terminal.h"

#include <cerrno>
#include <unistd.h>

namespace cubes::tool {

// They do so by themselves.
void prepareStreams() {}

bool messagesAreWatched() {
    return ::isatty(STDERR_FILENO) == 1;
}

bool readerWentAway() {
    return errno == EPIPE;
}

}
