#pragma once

#include <string>

namespace cubes::platform {

/// Removes a directory with its content; of links in it, and where it is one itself, the link and not what
/// it leads to. Whether all of it is gone.
bool removeTree(std::string const& directory);

}
