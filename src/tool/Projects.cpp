#include "tool/Projects.h"

#include "tool/Errors.h"
#include "tool/Paths.h"

#include <cubes/project/ProjectPathHelpers.h>

#include <fmt/format.h>

#include <filesystem>

namespace cubes::tool {

namespace fs = std::filesystem;

namespace {

bool isProject(std::string const& directory) {
    std::error_code ignored;
    return fs::exists(toPath(directory) / "cubes.toml", ignored);
}

}

void refuseProject(std::string const& directory) {
    if (isProject(directory)) throw Refusal("the directory is already a project");
}

std::string findProject(std::string const& given) {
    if (!given.empty()) {
        if (isProject(given)) return given;
        throw Refusal(fmt::format("{} is not a project: it has no cubes.toml", given));
    }
    auto const here = toText(fs::current_path());
    std::string const found = ProjectPathHelpers::getProjectDirectory(here).c_str();
    if (isProject(found)) return found;
    throw Refusal(fmt::format("there is no cubes.toml in {} or any directory above; "
                              "name a project with --project or create one with: cubes init DIR",
        here));
}

}
