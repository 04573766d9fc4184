#include "tool/Terminal.h"

#include <unistd.h>

namespace cubes::tool {

bool messagesAreWatched() {
    return ::isatty(STDERR_FILENO) == 1;
}

}
