#pragma once

#include "host/platform/File.h"

#include <string>

namespace cubes::platform {

/// Gives a new, empty file the content of a regular file, off Windows also its rights, by the
/// system's own copy: they share blocks where the file system can do that. Throws std::system_error.
void copyContent(std::string const& source, File& target);

}
