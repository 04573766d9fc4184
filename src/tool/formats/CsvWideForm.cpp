#include "tool/formats/CellList.h"
#include "tool/formats/CsvForms.h"
#include "tool/formats/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace cubes::tool {

namespace {

// For each zone number its place in the file; in ascending order of the numbers.
using Places = std::map<std::int32_t, std::size_t>;

struct WideTable {
    Places columns;
    Places rows;
    std::vector<std::size_t> rowLines;
    std::vector<float> cells;
};

Places readColumnZones(CsvLines const& lines) {
    auto const& header = lines.fields();
    Places columns;
    for (std::size_t i = 1; i < header.size(); ++i) {
        if (!isZoneNumber(header[i]))
            unexpected(lines.place(), header[i], "the header origin,destination,value or a zone number");
        auto const zone = zoneNumber(header[i], lines.place());
        if (!columns.try_emplace(zone, i - 1).second)
            throw FormatError(lines.place(), fmt::format("found the column of zone {} twice", zone));
    }
    if (columns.empty())
        unexpected(
            lines.place(), header[0], "the header origin,destination,value or zone numbers after the first field");
    return columns;
}

void readRow(CsvLines const& lines, WideTable& table) {
    auto const& fields = lines.fields();
    auto const place = lines.place();
    if (fields.size() != table.columns.size() + 1)
        throw FormatError(place,
            fmt::format("found {} fields, expected a zone number and {} values", fields.size(), table.columns.size()));
    auto const zone = zoneNumber(fields[0], place);
    auto const [found, isNew] = table.rows.try_emplace(zone, table.rows.size());
    if (!isNew)
        throw FormatError(
            place, fmt::format("found the row of zone {} again, after line {}", zone, table.rowLines[found->second]));
    table.rowLines.push_back(place.line);
    for (std::size_t i = 1; i < fields.size(); ++i) table.cells.push_back(cellValue(fields[i], place));
}

void requireAll(std::string const& file, Places const& given, Places const& expected, std::string_view what) {
    for (auto const& [zone, place] : expected)
        if (!given.contains(zone)) throw FormatError(file, fmt::format("found no {} for zone {}", what, zone));
}

TripTable inAscendingOrder(WideTable const& wide) {
    TripTable table;
    table.rows = table.columns = static_cast<int>(wide.rows.size());
    table.cells.reserve(wide.cells.size());
    for (auto const& [zone, row] : wide.rows) {
        table.zones.push_back(zone);
        for (auto const& [destination, column] : wide.columns)
            table.cells.push_back(wide.cells[row * wide.columns.size() + column]);
    }
    return table;
}

}

TripTable readWideForm(std::string const& file, CsvLines& lines) {
    WideTable wide;
    wide.columns = readColumnZones(lines);
    requireFit(file, wide.columns.size());
    while (lines.next()) readRow(lines, wide);
    requireAll(file, wide.rows, wide.columns, "row");
    requireAll(file, wide.columns, wide.rows, "column");
    return inAscendingOrder(wide);
}

}
