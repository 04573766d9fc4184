#include "tool/formats/CellList.h"
#include "tool/formats/Milestones.h"
#include "tool/formats/NumberText.h"
#include "tool/formats/Tntp.h"
#include "tool/formats/TntpScanner.h"
#include "tool/formats/WholeFile.h"
#include "tool/statistics/Sum.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace cubes::tool {

namespace {

struct HeaderTotal {
    double value;
    /// As it is written, for messages.
    std::string text;
};

struct Header {
    std::optional<std::int32_t> zones;
    std::optional<HeaderTotal> total;
};

// Takes a line `<KEY> value` apart; other keys than these two tell nothing that we keep.
void readHeaderLine(std::string_view key, std::string_view value, Place const& place, Header& header) {
    if (isSameWord(key, "NUMBER OF ZONES")) header.zones = zoneNumber(value, place);
    if (isSameWord(key, "TOTAL OD FLOW")) header.total = {finiteNumber(value, place), std::string(value)};
}

Header readHeader(TntpScanner& scanner) {
    Header header;
    while (!scanner.atEnd()) {
        auto const place = scanner.place();
        auto const line = scanner.restOfLine();
        auto const end = line.find('>');
        if (line[0] != '<' || end == std::string_view::npos)
            unexpected(place, line, "<KEY> value or <END OF METADATA>");
        auto const key = trimmed(line.substr(1, end - 1));
        if (isSameWord(key, "END OF METADATA")) return header;
        readHeaderLine(key, trimmed(line.substr(end + 1)), place, header);
    }
    unexpected(scanner.place(), {}, "<END OF METADATA>");
}

CellList readCells(TntpScanner& scanner, Milestones milestones) {
    CellList cells;
    std::optional<std::int32_t> origin;
    while (!scanner.atEnd()) {
        milestones.reached(scanner.position());
        auto const place = scanner.place();
        auto const word = scanner.word();
        if (isSameWord(word, "Origin")) {
            origin = zoneNumber(scanner.word(), scanner.place());
            cells.addZone(*origin);
            continue;
        }
        if (!origin) unexpected(place, word, "Origin and a zone number");
        auto const destination = zoneNumber(word, place);
        scanner.pass(':');
        auto const value = cellValue(scanner.word(), scanner.place());
        scanner.pass(';');
        cells.add(*origin, destination, value, place.line);
    }
    return cells;
}

std::vector<std::int32_t> zonesUpTo(std::int32_t count) {
    std::vector<std::int32_t> zones(static_cast<std::size_t>(count));
    std::iota(zones.begin(), zones.end(), 1);
    return zones;
}

// The header's zones, when all that occur are among them and it names no fantastic number.
std::vector<std::int32_t> zonesOf(std::optional<std::int32_t> count, std::vector<std::int32_t> occurring) {
    bool const isTold = count && static_cast<std::size_t>(*count) <= mostZones && occurring.back() <= *count;
    return isTold ? zonesUpTo(*count) : occurring;
}

// A total is written with a few decimals, and cells are single precision.
bool agrees(HeaderTotal const& told, double found) {
    auto const point = told.text.find('.');
    auto const decimals = point == std::string::npos ? 0 : told.text.size() - point - 1;
    auto const rounding = 0.5 * std::pow(10.0, -static_cast<double>(decimals));
    return std::abs(told.value - found) <= std::max(1e-6 * std::abs(told.value), rounding);
}

double totalOf(TripTable const& table) {
    Sum sum;
    for (float const value : table.cells) sum.add(value);
    return sum.value();
}

void compareWithHeader(Header const& header, std::size_t zonesFound, TripTable& table) {
    if (header.zones && static_cast<std::size_t>(*header.zones) != zonesFound)
        table.warnings.push_back(
            fmt::format("the header tells {} zones, {} occur in the file", *header.zones, zonesFound));
    if (auto const total = totalOf(table); header.total && !agrees(*header.total, total))
        table.warnings.push_back(
            fmt::format("the header tells a total of {}, the cells add up to {:.10g}", header.total->text, total));
}

}

TripTable readTntp(std::string const& path, ShareDone const& shareDone) {
    auto const text = readWholeFile(path);
    TntpScanner scanner(path, text);
    if (scanner.atEnd()) throw FormatError(path, "is empty, expected trips in TNTP format");
    auto const header = readHeader(scanner);
    auto const cells = readCells(scanner, Milestones(text.size(), shareDone));
    auto const occurring = cells.zones();
    if (occurring.empty()) throw FormatError(path, "found no trips after <END OF METADATA>");
    auto table = cells.table(path, zonesOf(header.zones, occurring));
    compareWithHeader(header, occurring.size(), table);
    return table;
}

}
