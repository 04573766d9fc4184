#pragma once

#include "Stamp.h"

#include <functional>
#include <string>

/// Files of ours as wholes: they are read in one go, and made in memory and put in place in one step.
namespace cubes::routes {

using FileContent = std::function<void(hid_t file)>;

/// Calls `read` with the opened file. Throws when that is no regular file in HDF5's format.
void readStoredFile(std::string const& path, FileContent const& read);
/// Calls `write` with an empty file, which then takes the place of the one at `path`.
void writeStoredFile(std::string const& path, FileContent const& write);
/// Gives an existing file another stamp.
void restampStoredFile(std::string const& path, Stamp const& stamp);

}
