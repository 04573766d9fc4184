#include "host/platform/Tree.h"

#include "host/platform/Paths.h"

namespace cubes::platform {

namespace fs = std::filesystem;

bool removeTree(std::string const& directory) {
    std::error_code error;
    fs::remove_all(toPath(directory), error);
    return !error;
}

bool copyTree(std::string const& source, std::string const& target, bool overwrite) {
    auto const existing = overwrite ? fs::copy_options::overwrite_existing : fs::copy_options::none;
    std::error_code error;
    fs::copy(toPath(source), toPath(target), existing | fs::copy_options::recursive, error);
    return !error;
}

}
