#include "tool/ProjectFinder.h"

#include "tool/Errors.h"
#include "tool/Paths.h"

#include <cubes/project/ProjectPathHelpers.h>

#include <fmt/format.h>

#include <filesystem>

namespace cubes::tool {

namespace fs = std::filesystem;

bool isProject(std::string const& directory) {
    std::error_code ignored;
    return fs::exists(toPath(directory) / "cubes.toml", ignored);
}

void refuseProject(std::string const& directory) {
    if (isProject(directory)) throw Refusal("the directory is a project already");
}

std::string findProject(std::string const& given) {
    if (!given.empty()) {
        if (isProject(given)) return given;
        throw Refusal(fmt::format("there is no project in {}: it has no cubes.toml", given));
    }
    auto const here = toText(fs::current_path());
    std::string const found = ProjectPathHelpers::getProjectDirectory(here).c_str();
    if (isProject(found)) return found;
    throw Refusal(fmt::format("there is no project here: no cubes.toml in {} or any directory above; "
                              "name one with --project or make one with cubes init",
        here));
}

}
