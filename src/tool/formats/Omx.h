#pragma once

#include "tool/formats/Formats.h"

#include <optional>
#include <string>

/// Tables of Open Matrix files, which the library reads and writes.
namespace cubes::tool {

/// Throws FormatError for a file that cannot be read, for a table that it has not, and when it
/// has several and none is chosen.
TripTable readOmx(std::string const& path, std::optional<std::string> const& table);
/// Writes a file with this one table.
void writeOmx(std::string const& path, TripTable const& trips, std::string const& table);

}
