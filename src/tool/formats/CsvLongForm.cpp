#include "tool/formats/CellList.h"
#include "tool/formats/CsvForms.h"
#include "tool/formats/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace cubes::tool {

namespace {

constexpr std::array<std::string_view, 3> columnNames = {"origin", "destination", "value"};

std::size_t columnOf(std::vector<std::string_view> const& header, std::string_view name) {
    auto const found =
        std::find_if(header.begin(), header.end(), [&](std::string_view field) { return isSameWord(field, name); });
    return static_cast<std::size_t>(found - header.begin());
}

}

bool isLongHeader(CsvLines const& lines) {
    auto const& header = lines.fields();
    return header.size() == columnNames.size() &&
           std::all_of(columnNames.begin(), columnNames.end(),
               [&](std::string_view name) { return columnOf(header, name) < header.size(); });
}

TripTable readLongForm(std::string const& file, CsvLines& lines) {
    auto const origin = columnOf(lines.fields(), "origin");
    auto const destination = columnOf(lines.fields(), "destination");
    auto const value = columnOf(lines.fields(), "value");
    CellList cells;
    while (lines.next()) {
        auto const& fields = lines.fields();
        auto const place = lines.place();
        if (fields.size() != columnNames.size())
            throw FormatError(
                place, fmt::format("found {} fields, expected origin, destination and value", fields.size()));
        cells.add(zoneNumber(fields[origin], place), zoneNumber(fields[destination], place),
            cellValue(fields[value], place), place.line);
    }
    auto zones = cells.zones();
    if (zones.empty()) throw FormatError(file, "found no cells after the header line");
    return cells.table(file, std::move(zones));
}

}
