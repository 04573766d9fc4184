#pragma once

#include <string>

namespace cubes::tool {

/// Waits until a file, or the names in a directory, are on the disk. Nothing happens when that
/// cannot be asked for.
void flushToDisk(std::string const& path);

}
