#pragma once

#include "tool/formats/CsvLines.h"
#include "tool/formats/TripTable.h"

#include <string>

/// The two forms of comma-separated values. The readers start on the first line.
namespace cubes::tool {

/// Whether the line the walk is on is the header of the long form.
bool isLongHeader(CsvLines const& lines);
TripTable readLongForm(std::string const& file, CsvLines& lines);
TripTable readWideForm(std::string const& file, CsvLines& lines);

}
