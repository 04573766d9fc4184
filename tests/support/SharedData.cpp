#include "support/SharedData.h"

#include <cstdlib>
#include <filesystem>

namespace cubes::test {

std::string sharedData(std::string const& name) {
    char const* const directory = std::getenv("CUBES_TEST_DATA");
    if (!directory) return {};
    auto const path = std::filesystem::absolute(std::filesystem::path(directory) / name);
    return std::filesystem::exists(path) ? path.string() : std::string();
}

}
