#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace cubes::tool {

/// A line of a file, counted from 1.
struct Place {
    std::string_view file;
    std::size_t line = 0;
};

/// A file that cannot be read or written as a trip table. The message names the file, where it is
/// known the line, what was found and what was expected: "trips.csv:7: found 'abc', expected a number".
class FormatError : public std::runtime_error {
public:
    FormatError(std::string_view file, std::string_view problem);
    FormatError(Place const& place, std::string_view problem);
};

/// Throws the FormatError for a piece of text that should be something else. Of a long piece only
/// the beginning is shown.
[[noreturn]] void unexpected(Place const& place, std::string_view found, std::string_view expected);

}
