#pragma once

#include "tool/formats/CsvLines.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cubes::tool {

/// Walks comma-separated values whose first line names the columns: each of the expected names once,
/// in any order and any letter case.
class CsvColumns {
public:
    /// Throws FormatError when the first line is another. REQUIRES: the arguments outlive this object.
    CsvColumns(std::string const& file, std::string_view text, std::span<std::string_view const> names,
        ShareDone const& shareDone);

    /// Goes to the next line; false at the end. Throws FormatError for one with more or fewer fields.
    bool next();
    /// The field of the line in the column of that name, by its place among the expected names.
    std::string_view operator[](std::size_t column) const { return lines_.fields()[places_[column]]; }
    Place place() const { return lines_.place(); }

private:
    CsvLines lines_;
    std::vector<std::size_t> places_;
};

}
