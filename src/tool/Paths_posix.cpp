#include "tool/Paths.h"

namespace cubes::tool {

std::filesystem::path toPath(std::string const& text) {
    return {text};
}

std::string toText(std::filesystem::path const& path) {
    return path.string();
}

}
