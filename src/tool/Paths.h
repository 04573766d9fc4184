#pragma once

#include <filesystem>
#include <string>

namespace cubes::tool {

/// Paths are texts as the command line and the library have them: in the platform's narrow encoding,
/// which the standard library does not take for one on Windows.
std::filesystem::path toPath(std::string const& text);
std::string toText(std::filesystem::path const& path);

/// Whether both paths lead to one directory that is there.
bool isSameDirectory(std::string const& first, std::string const& second);

}
