#pragma once

#include <string>

namespace cubes::store {

/// Moves a file to the directory "quarantine" beside it, where it replaces no file, and writes a note there that says
/// when, why and from where. Both survive a power failure. Returns the new path. Throws std::system_error; the file
/// then has its old name and there is no note.
std::string moveToQuarantine(std::string const& file, std::string const& why);

}
