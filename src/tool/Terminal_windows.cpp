#include "tool/Terminal.h"

#include <cstdio>
#include <io.h>

namespace cubes::tool {

bool messagesAreWatched() {
    return ::_isatty(::_fileno(stderr)) != 0;
}

}
