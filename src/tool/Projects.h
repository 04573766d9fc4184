#pragma once

#include <cubes/project/Project.h>

#include <string>

namespace cubes::tool {

/// The directory of the project to work in: `given`, by default the nearest directory upward from the
/// working directory with a "cubes.toml". Throws Refusal, which says where it searched.
std::string findProject(std::string const& given);

/// Creates a project. Throws Refusal when the directory is already one. Prints a note when the database
/// holds entries of other projects.
Project createProject(std::string const& directory, ProjectOptions const& options);

}
