#pragma once

#include <stdexcept>
#include <string>

namespace cubes::tool {

/// A file that cannot be read or written as a trip table. The message names the file, where it is
/// known the line, what was found and what was expected: "trips.csv:7: found 'abc', expected a number".
class FormatError : public std::runtime_error {
public:
    FormatError(std::string const& file, std::string const& problem) : std::runtime_error(file + ": " + problem) {}
    FormatError(std::string const& file, std::size_t line, std::string const& problem)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + problem) {}
};

}
