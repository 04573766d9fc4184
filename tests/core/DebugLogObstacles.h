#pragma once

#include "core/DebugLogTest.h"

#include <functional>
#include <string>

namespace cubes::test {

/// Something that is in the way of the log.
struct Obstacle {
    char const* name;
    /// Puts it in the way, in a directory of its own, and gives the temporary directory to use.
    std::function<std::string(TempDir const&)> build;
};

class Obstacles : public DebugLogTest, public testing::WithParamInterface<Obstacle> {};

/// The names of the operations that change the last system error or throw.
std::string disturbing();

inline void writeEverything() {
    ZebDebug::writeDebug("text");
    ZebDebug::writeError(L"text");
    ZebDebug::writeTrace("a.cpp", 1, "f", "text");
    ZebDebug::writeLastError();
    ZebDebug::writeStack();
}

}
