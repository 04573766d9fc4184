#pragma once

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

namespace cubes::tool {

// Paths are narrow texts, as the command line and the library have them.
using platform::isSameDirectory;
using platform::toPath;

inline std::string toText(std::filesystem::path const& path) {
    return platform::fromPath(path);
}

}
