#include "tool/formats/CsvColumns.h"

#include "tool/formats/NumberText.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

CsvColumns::CsvColumns(
    std::string const& file, std::string_view text, std::span<std::string_view const> names, ShareDone const& shareDone)
    : lines_(file, text, shareDone) {
    auto const expected = fmt::format("the header {}", fmt::join(names, ","));
    if (!lines_.next()) throw FormatError(file, "is empty, expected " + expected);
    auto const& header = lines_.fields();
    for (std::string_view const name : names) {
        auto const found =
            std::find_if(header.begin(), header.end(), [&](std::string_view field) { return isSameWord(field, name); });
        places_.push_back(static_cast<std::size_t>(found - header.begin()));
        if (found == header.end() || header.size() != names.size())
            unexpected(lines_.place(), fmt::format("{}", fmt::join(header, ",")), expected);
    }
}

bool CsvColumns::next() {
    if (!lines_.next()) return false;
    if (lines_.fields().size() != places_.size())
        throw FormatError(place(), fmt::format("found {} fields, expected {}", lines_.fields().size(), places_.size()));
    return true;
}

}
