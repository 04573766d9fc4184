#include "tool/Projects.h"

#include "tool/Errors.h"
#include "tool/Paths.h"

#include <cubes/project/ProjectPathHelpers.h>
#include <cubes/store/EntryStore.h>

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

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

namespace {

void addTree(fs::path const& directory, std::set<fs::path>& found) {
    std::error_code error;
    if (fs::exists(directory, error)) found.insert(directory);
    for (fs::recursive_directory_iterator inside(directory, error), end; !error && inside != end;
         inside.increment(error))
        found.insert(inside->path());
}

// Empty for a server.
fs::path databaseFile(fs::path const& root, ProjectOptions const& options) {
    auto const* const variable = std::getenv("CUBES_DATABASE");
    std::string url = options.database;
    if (url.empty()) url = variable ? variable : "sqlite:cubes.db";
    constexpr std::string_view sqlite = "sqlite:";
    return url.starts_with(sqlite) ? root / toPath(url.substr(sqlite.size())) : fs::path();
}

}

std::set<fs::path> pathsOfProject(std::string const& directory, ProjectOptions const& options) {
    auto const root = fs::absolute(toPath(directory)).lexically_normal();
    std::set<fs::path> found;
    for (auto const* const name : {"matrices", "results"}) addTree(root / name, found);
    std::vector<fs::path> others = {root / "cubes.toml"};
    for (auto up = root; up != up.root_path(); up = up.parent_path()) others.push_back(up);
    if (auto const file = databaseFile(root, options); !file.empty())
        for (auto const* const end : {"", "-wal", "-shm", "-journal", "-queue"})
            others.push_back(fs::path(file) += end);
    std::error_code ignored;
    for (auto const& path : others)
        if (fs::exists(path, ignored)) found.insert(path);
    return found;
}

void removeNewPaths(
    std::string const& directory, ProjectOptions const& options, std::set<fs::path> const& before) noexcept {
    try {
        auto const now = pathsOfProject(directory, options);
        std::error_code ignored;
        // Backwards, so that the content of a directory is removed first.
        for (auto path = now.rbegin(); path != now.rend(); ++path)
            if (!before.contains(*path)) fs::remove(*path, ignored);
    } catch (std::exception const&) {
        // The error that led here is the one to report.
    }
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
