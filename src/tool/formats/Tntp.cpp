#include "tool/Errors.h"
#include "tool/Statistics.h"
#include "tool/Text.h"
#include "tool/formats/Formats.h"
#include "tool/formats/WholeFile.h"

#include <cubes/matrix/MatrixLimits.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace cubes::tool {

namespace {

/// Splits a TNTP text: its header into lines, its body into words and the marks ':' and ';'. Comments
/// count as blanks.
class TntpScanner {
public:
    /// REQUIRES: `text` outlives this object.
    explicit TntpScanner(std::string_view text) : text_(text) {}

    /// Skips blanks; returns whether that was the rest of the text.
    bool atEnd();
    /// The rest of the line, without its comment and trailing blanks.
    std::string_view restOfLine();
    /// The next word; empty before a mark and at the end of the text.
    std::string_view word();
    /// Skips a mark, or throws FormatError when something else follows.
    void pass(char mark);

    std::size_t position() const noexcept { return position_; }
    std::size_t line() const noexcept { return line_; }

private:
    std::string_view take(std::string_view stops);

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t line_ = 1;
};

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isMark(char c) {
    return c == ':' || c == ';';
}

bool TntpScanner::atEnd() {
    for (; position_ < text_.size(); ++position_) {
        if (text_[position_] == '~') take("\n");
        if (position_ == text_.size() || !isBlank(text_[position_])) break;
        if (text_[position_] == '\n') ++line_;
    }
    return position_ == text_.size();
}

std::string_view TntpScanner::restOfLine() {
    auto line = take("\n~");
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return trimmed(line);
}

std::string_view TntpScanner::word() {
    return atEnd() ? std::string_view() : take(" \t\r\n~:;");
}

void TntpScanner::pass(char mark) {
    char const expected[] = {'\'', mark, '\'', '\0'};
    if (atEnd()) unexpected(line(), {}, expected);
    if (text_[position_] != mark)
        unexpected(line(), isMark(text_[position_]) ? text_.substr(position_, 1) : word(), expected);
    ++position_;
}

// The text up to one of the characters, or to the end.
std::string_view TntpScanner::take(std::string_view stops) {
    auto const end = std::min(text_.find_first_of(stops, position_), text_.size());
    auto const taken = text_.substr(position_, end - position_);
    position_ = end;
    return taken;
}

struct HeaderTotal {
    double value;
    /// As written in the file.
    std::string text;
};

struct Header {
    std::optional<std::int32_t> zones;
    std::optional<HeaderTotal> total;
};

// Other keys are comments.
void readHeaderLine(std::string_view key, std::string_view value, std::size_t line, Header& header) {
    if (isSameWord(key, "NUMBER OF ZONES")) header.zones = zoneNumber(value, line);
    if (isSameWord(key, "TOTAL OD FLOW")) header.total = {finiteNumber(value, line), std::string(value)};
}

Header readHeader(TntpScanner& scanner) {
    Header header;
    while (!scanner.atEnd()) {
        auto const line = scanner.line();
        auto const text = scanner.restOfLine();
        auto const end = text.find('>');
        if (text[0] != '<' || end == std::string_view::npos) unexpected(line, text, "<KEY> value or <END OF METADATA>");
        auto const key = trimmed(text.substr(1, end - 1));
        if (isSameWord(key, "END OF METADATA")) return header;
        readHeaderLine(key, trimmed(text.substr(end + 1)), line, header);
    }
    unexpected(scanner.line(), {}, "<END OF METADATA>");
}

CellList readCells(TntpScanner& scanner, ProgressThrottle throttle) {
    CellList cells;
    std::optional<std::int32_t> origin;
    while (!scanner.atEnd()) {
        throttle.reached(scanner.position());
        auto const line = scanner.line();
        auto const word = scanner.word();
        if (isSameWord(word, "Origin")) {
            origin = zoneNumber(scanner.word(), scanner.line());
            cells.addZone(*origin);
            continue;
        }
        if (!origin) unexpected(line, word, "Origin and a zone number");
        auto const destination = zoneNumber(word, line);
        scanner.pass(':');
        auto const value = cellValue(scanner.word(), scanner.line());
        scanner.pass(';');
        cells.add(*origin, destination, value, line);
    }
    return cells;
}

std::vector<std::int32_t> zonesUpTo(std::int32_t count) {
    std::vector<std::int32_t> zones(static_cast<std::size_t>(count));
    std::iota(zones.begin(), zones.end(), 1);
    return zones;
}

// Whether a text of that size can have so many zones: it is sparse, but a large one names each of them.
bool isPossible(std::int32_t zones, std::size_t textSize) {
    constexpr std::int32_t alwaysPossible = 4000;
    return zones <= mostZones() && (zones <= alwaysPossible || std::cmp_less_equal(zones, textSize));
}

// The header's zones, unless others occur or it gives an absurd number.
std::vector<std::int32_t> zonesOf(
    std::optional<std::int32_t> count, std::vector<std::int32_t> occurring, std::size_t textSize) {
    bool const isUsable = count && isPossible(*count, textSize) && occurring.back() <= *count;
    return isUsable ? zonesUpTo(*count) : occurring;
}

// A total is written with a few decimals, and cells are single precision.
bool agrees(HeaderTotal const& given, double found) {
    auto const point = given.text.find('.');
    auto const decimals = point == std::string::npos ? 0 : given.text.size() - point - 1;
    auto const rounding = 0.5 * std::pow(10.0, -static_cast<double>(decimals));
    return std::abs(given.value - found) <= std::max(1e-6 * std::abs(given.value), rounding);
}

double totalOf(TripTable const& table) {
    Sum sum;
    for (float const value : table.cells) sum.add(value);
    return sum.value();
}

void compareWithHeader(Header const& header, std::size_t zonesFound, TripTable& table) {
    if (header.zones && static_cast<std::size_t>(*header.zones) != zonesFound)
        table.warnings.push_back(
            fmt::format("the header gives {} zones, but {} occur in the file", *header.zones, zonesFound));
    if (auto const total = totalOf(table); header.total && !agrees(*header.total, total))
        table.warnings.push_back(
            fmt::format("the header gives a total of {}, but the cells add up to {:.10g}", header.total->text, total));
}

}

TripTable readTntp(std::string const& path, ProgressCallback const& progress) {
    auto const text = readWholeFile(path);
    TntpScanner scanner(text);
    if (scanner.atEnd()) throw FormatError("it is empty, expected trips in TNTP format");
    auto const header = readHeader(scanner);
    auto const cells = readCells(scanner, ProgressThrottle(text.size(), progress));
    auto const occurring = cells.zones();
    if (occurring.empty()) throw FormatError("it has no trips after <END OF METADATA>");
    auto table = cells.table(zonesOf(header.zones, occurring, text.size()));
    compareWithHeader(header, occurring.size(), table);
    return table;
}

}
