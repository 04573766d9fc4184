#include "tool/Projects.h"

#include "tool/Errors.h"
#include "tool/Paths.h"

#include <cubes/project/ProjectPathHelpers.h>
#include <cubes/store/EntryStore.h>

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

Project createProject(std::string const& directory, ProjectOptions const& options) {
    if (isProject(directory)) throw Refusal("the directory is already a project");
    auto project = Project::create(directory, options);
    std::size_t shared = 0;
    for (auto const& [number, count] : project.store().counts()) shared += count;
    if (shared > 0)
        printNote(fmt::format("the database holds {} entries of cubes from other projects; they are shared", shared));
    return project;
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
