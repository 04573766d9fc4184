#pragma once

#include <string>

/// Directories with all that is in them.
namespace cubes::platform {

/// Removes a directory with its content; of links in it, and where it is one itself, the link and not what
/// it leads to. Whether all of it is gone.
bool removeTree(std::string const& directory);

/// Copies a directory with its content to where none is, or into one, or a file; existing files are an end of
/// it unless they are to be overwritten. Whether all of it is there.
bool copyTree(std::string const& source, std::string const& target, bool overwrite);

}
