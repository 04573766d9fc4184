#pragma once

#include <string>

/// File names as entry tables store them: relative to a directory of the project, with "\" between
/// parts on every platform, since one database is shared by several.
namespace cubes {

/// Whether a stored name may be used: not empty, not absolute, and it stays inside the directory.
bool isUsableStoredName(std::string const& name);

/// The native full path of a stored name: the directory's text as it is, followed by the name.
/// Empty for a name that may not be used.
std::string storedPath(std::string const& directory, std::string const& name);

}
