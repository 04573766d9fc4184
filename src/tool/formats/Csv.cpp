#include "tool/Errors.h"
#include "tool/Text.h"
#include "tool/formats/CsvLines.h"
#include "tool/formats/Formats.h"
#include "tool/formats/WholeFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <map>
#include <numeric>

namespace cubes::tool {

namespace {

constexpr std::string_view longColumns[] = {"origin", "destination", "value"};
enum LongColumn : std::size_t { origin, destination, value };

TripTable readLongForm(CsvColumns columns) {
    CellList cells;
    while (columns.next()) {
        auto const line = columns.line();
        cells.add(zoneNumber(columns[origin], line), zoneNumber(columns[destination], line),
            cellValue(columns[value], line), line);
    }
    auto zones = cells.zones();
    if (zones.empty()) throw FormatError("it has no cells after the header line");
    return cells.table(std::move(zones));
}

// The position of each zone in the file, by ascending zone numbers.
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
            unexpected(lines.number(), header[i], "the header origin,destination,value or a zone number");
        auto const zone = zoneNumber(header[i], lines.number());
        if (!columns.try_emplace(zone, i - 1).second)
            throw FormatError(lines.number(), fmt::format("found the column of zone {} twice", zone));
    }
    if (columns.empty())
        unexpected(
            lines.number(), header[0], "the header origin,destination,value or zone numbers after the first field");
    return columns;
}

void readRow(CsvLines const& lines, WideTable& table) {
    auto const& fields = lines.fields();
    auto const line = lines.number();
    if (fields.size() != table.columns.size() + 1)
        throw FormatError(line,
            fmt::format("found {} fields, expected a zone number and {} values", fields.size(), table.columns.size()));
    auto const zone = zoneNumber(fields[0], line);
    auto const [found, isNew] = table.rows.try_emplace(zone, table.rows.size());
    if (!isNew)
        throw FormatError(
            line, fmt::format("found the row of zone {} again, after line {}", zone, table.rowLines[found->second]));
    table.rowLines.push_back(line);
    for (std::size_t i = 1; i < fields.size(); ++i) table.cells.push_back(cellValue(fields[i], line));
}

void requireAll(Places const& given, Places const& expected, std::string_view what) {
    for (auto const& [zone, position] : expected)
        if (!given.contains(zone)) throw FormatError(fmt::format("it has no {} for zone {}", what, zone));
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

TripTable readWideForm(CsvLines& lines) {
    WideTable wide;
    wide.columns = readColumnZones(lines);
    requireFit(wide.columns.size());
    while (lines.next()) readRow(lines, wide);
    requireAll(wide.rows, wide.columns, "row");
    requireAll(wide.columns, wide.rows, "column");
    return inAscendingOrder(wide);
}

using Zones = std::vector<std::int32_t>;

Zones zonesOf(TripTable const& trips) {
    if (!trips.zones.empty()) return trips.zones;
    Zones zones(static_cast<std::size_t>(trips.rows));
    std::iota(zones.begin(), zones.end(), 1);
    return zones;
}

void requireWritable(TripTable const& trips, Zones zones) {
    if (!trips.isSquare())
        throw FormatError(fmt::format(
            ".csv holds square matrices only, and this one has {} rows and {} columns; export it to an .omx file",
            trips.rows, trips.columns));
    std::sort(zones.begin(), zones.end());
    auto const twice = std::adjacent_find(zones.begin(), zones.end());
    if (twice != zones.end()) throw FormatError(fmt::format("the matrix has zone number {} twice", *twice));
}

// A value whose bits are all 0, as readers take an OD pair that is not listed.
bool isPlainZero(float value) {
    return std::bit_cast<std::uint32_t>(value) == 0;
}

// The intrazonal cells are always listed, so that no zone is lost.
void appendLongRow(std::string& text, Zones const& zones, std::span<float const> values, std::size_t row) {
    for (std::size_t column = 0; column < values.size(); ++column) {
        if (isPlainZero(values[column]) && column != row) continue;
        appendNumber(text, zones[row]);
        text += ',';
        appendNumber(text, zones[column]);
        text += ',';
        appendValue(text, values[column]);
        text += '\n';
    }
}

void appendWideRow(std::string& text, Zones const& zones, std::span<float const> values, std::size_t row) {
    appendNumber(text, zones[row]);
    for (float const value : values) {
        text += ',';
        appendValue(text, value);
    }
    text += '\n';
}

std::string longHeader(Zones const&) {
    return "origin,destination,value\n";
}

std::string wideHeader(Zones const& zones) {
    std::string text = "zone";
    for (auto const zone : zones) {
        text += ',';
        appendNumber(text, zone);
    }
    return text + "\n";
}

struct Form {
    std::string (*header)(Zones const&);
    void (*appendRow)(std::string&, Zones const&, std::span<float const>, std::size_t row);
};

Form formOf(CsvForm form) {
    return form == CsvForm::wide ? Form{wideHeader, appendWideRow} : Form{longHeader, appendLongRow};
}

}

TripTable readCsv(std::string const& path, ProgressCallback const& progress) {
    auto const text = readWholeFile(path);
    CsvLines lines(text, progress);
    if (!lines.next()) throw FormatError("it is empty, expected comma-separated values");
    if (auto columns = CsvColumns::find(lines, longColumns)) return readLongForm(std::move(*columns));
    return readWideForm(lines);
}

void writeCsv(std::string const& path, TripTable const& trips, CsvForm csvForm, ProgressCallback const& progress) {
    auto const zones = zonesOf(trips);
    requireWritable(trips, zones);
    auto const form = formOf(csvForm);
    NewFile file(path);
    file.write(form.header(zones));
    ProgressThrottle throttle(zones.size(), progress);
    std::string text;
    for (std::size_t row = 0; row < zones.size(); ++row) {
        text.clear();
        form.appendRow(text, zones, trips.row(static_cast<int>(row)), row);
        file.write(text);
        throttle.reached(row + 1);
    }
    file.commit();
}

}
