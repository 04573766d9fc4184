#include "tool/Paths.h"

namespace cubes::tool {

namespace {

namespace fs = std::filesystem;

fs::path withoutLastDelimiter(fs::path const& path) {
    return path.has_filename() ? path : path.parent_path();
}

}

// On Windows the standard library finds no directory equivalent to one that ends in a delimiter.
bool isSameDirectory(std::string const& first, std::string const& second) {
    std::error_code ignored;
    return fs::equivalent(withoutLastDelimiter(toPath(first)), withoutLastDelimiter(toPath(second)), ignored);
}

}
