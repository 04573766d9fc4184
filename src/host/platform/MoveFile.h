#pragma once

#include <string>

namespace cubes::platform {

/// Gives a file or directory another name; false when that cannot be done, and when the target
/// exists. To another file system a regular file is copied and removed; a directory stays.
bool moveFile(std::string const& source, std::string const& target);

}
