#pragma once

#include <string>

namespace cubes::tool {

bool isProject(std::string const& directory);
/// Throws Refusal when the directory is a project already.
void refuseProject(std::string const& directory);

/// The directory of the project to work in: `given`, else the nearest directory upward from the
/// working directory with a "cubes.toml". Throws Refusal, which tells where it looked.
std::string findProject(std::string const& given);

}
