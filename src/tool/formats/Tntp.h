#pragma once

#include "tool/formats/Formats.h"

#include <string>

namespace cubes::tool {

/// Reads trips in the text format of the Transportation Networks for Research: lines `<KEY> value`
/// up to `<END OF METADATA>`, then `Origin n` followed by `destination : trips;` items, with
/// blanks and tabs anywhere and comments from `~` to the end of the line. The zones are 1 to the
/// header's number of zones when all that occur are among them, else those that occur. A header
/// figure that the cells do not bear out is a warning. Throws FormatError.
TripTable readTntp(std::string const& path, ShareDone const& shareDone);

}
