#pragma once

#include "tool/formats/Formats.h"

#include <optional>
#include <string>

/// Tables of Open Matrix files, which the library reads and writes.
namespace cubes::tool {

/// Throws FormatError for a table that the file has not or that is damaged, and when the file has
/// several and none is chosen; TRkMatrixException for a file that cannot be read.
TripTable readOmx(std::string const& path, std::optional<std::string> const& table);

/// Writes a file with this one table. Throws TRkMatrixException.
void writeOmx(std::string const& path, TripTable const& trips, std::string const& table);

}
