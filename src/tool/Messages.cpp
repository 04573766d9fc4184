#include "tool/Messages.h"

#include <fmt/format.h>

#include <cstdio>

namespace cubes::tool {

namespace {

// Nobody can be told that the error stream is closed.
void tell(std::string const& line) {
    std::fputs(line.c_str(), stderr);
}

}

void tellError(std::string const& message) {
    tell(fmt::format("cubes: {}\n", message));
}

void tellWarning(std::string const& message) {
    tell(fmt::format("cubes: warning: {}\n", message));
}

void tellNote(std::string const& message) {
    tell(fmt::format("cubes: note: {}\n", message));
}

}
