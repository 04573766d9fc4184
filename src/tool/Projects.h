#pragma once

#include <cubes/project/Project.h>

#include <string>

namespace cubes::tool {

/// The directory of the project to work in: `given`, by default the nearest directory upward from the
/// working directory with a "cubes.toml". Throws Refusal, which says where it searched.
std::string findProject(std::string const& given);

/// Throws Refusal when the directory is already a project.
void refuseProject(std::string const& directory);

}
