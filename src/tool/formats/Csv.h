#pragma once

#include "tool/formats/Formats.h"

#include <string>

/// Comma-separated values in two forms, told apart by the first line.
namespace cubes::tool {

/// The long form has the columns origin, destination and value, in any order; pairs that it does
/// not list are 0. The wide form has zone numbers in the first row and column, and the same zones
/// in both. Zones are put in ascending order. Throws FormatError.
TripTable readCsv(std::string const& path, ShareDone const& shareDone);

/// Throws FormatError for a table that is not square or has a zone number twice. Zones that have
/// no numbers get 1, 2, 3...
void writeCsv(std::string const& path, TripTable const& trips, CsvForm form, ShareDone const& shareDone);

}
