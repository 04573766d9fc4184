#pragma once

#include <cubes/project/Project.h>

#include <filesystem>
#include <set>
#include <string>

namespace cubes::tool {

/// The directory of the project to work in: `given`, by default the nearest directory upward from the
/// working directory with a "cubes.toml". Throws Refusal, which says where it searched.
std::string findProject(std::string const& given);

/// Creates a project. Throws Refusal when the directory is already one. Prints a note when the database
/// holds entries of other projects.
Project createProject(std::string const& directory, ProjectOptions const& options);

/// The existing paths of a project in a directory: the directory and those above it, "matrices" and "results" with
/// everything in them, "cubes.toml", and the files of an SQLite database. `options`: those of createProject.
std::set<std::filesystem::path> pathsOfProject(std::string const& directory, ProjectOptions const& options);
/// Removes the paths of a project that did not exist before. A path that cannot be removed is skipped.
void removeNewPaths(std::string const& directory, ProjectOptions const& options,
    std::set<std::filesystem::path> const& before) noexcept;

}
