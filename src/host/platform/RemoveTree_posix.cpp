#include "host/platform/RemoveTree.h"

#include "host/platform/Paths.h"

namespace cubes::platform {

bool removeTree(std::string const& directory) {
    std::error_code error;
    std::filesystem::remove_all(toPath(directory), error);
    return !error;
}

}
