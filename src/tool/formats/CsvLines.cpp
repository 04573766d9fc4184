#include "tool/formats/CsvLines.h"

#include "tool/Errors.h"
#include "tool/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

void skipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

// The position of the quote that ends a field whose first quote is the first character.
std::size_t closingQuote(std::string_view text) {
    auto quote = text.find('"', 1);
    while (quote != std::string_view::npos && text.substr(quote, 2) == "\"\"") quote = text.find('"', quote + 2);
    return quote;
}

}

CsvLines::CsvLines(std::string_view text, ProgressCallback const& progress)
    : text_(text), throttle_(text.size(), progress) {
    if (text_.substr(0, byteOrderMark.size()) == byteOrderMark) position_ = byteOrderMark.size();
}

bool CsvLines::next() {
    while (position_ < text_.size()) {
        auto const line = takeLine();
        throttle_.reached(position_);
        if (trimmed(line).empty()) continue;
        split(line);
        return true;
    }
    return false;
}

std::string_view CsvLines::takeLine() {
    auto const end = std::min(text_.find('\n', position_), text_.size());
    auto line = text_.substr(position_, end - position_);
    position_ = std::min(end + 1, text_.size());
    ++number_;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

// Every comma outside quotes separates two fields.
void CsvLines::split(std::string_view line) {
    fields_.clear();
    for (;;) {
        fields_.push_back(takeField(line));
        if (line.empty()) return;
        line.remove_prefix(1);
    }
}

// Takes a field from the beginning of `rest` and leaves the comma that follows it.
std::string_view CsvLines::takeField(std::string_view& rest) const {
    skipBlanks(rest);
    if (!rest.empty() && rest[0] == '"') return takeQuotedField(rest);
    auto const comma = std::min(rest.find(','), rest.size());
    auto const field = trimmed(rest.substr(0, comma));
    rest.remove_prefix(comma);
    return field;
}

std::string_view CsvLines::takeQuotedField(std::string_view& rest) const {
    auto const quote = closingQuote(rest);
    if (quote == std::string_view::npos) unexpected(number_, rest, "a closing quote");
    auto const field = trimmed(rest.substr(1, quote - 1));
    rest.remove_prefix(quote + 1);
    skipBlanks(rest);
    if (!rest.empty() && rest[0] != ',') unexpected(number_, rest, "a comma after a quoted field");
    return field;
}

std::optional<CsvColumns> CsvColumns::find(CsvLines& lines, std::span<std::string_view const> names) {
    auto const& header = lines.fields();
    if (header.size() != names.size()) return std::nullopt;
    CsvColumns columns(lines);
    for (auto const name : names) {
        auto const found =
            std::ranges::find_if(header, [&](std::string_view field) { return isSameWord(field, name); });
        if (found == header.end()) return std::nullopt;
        columns.places_.push_back(static_cast<std::size_t>(found - header.begin()));
    }
    return columns;
}

CsvColumns CsvColumns::require(CsvLines& lines, std::span<std::string_view const> names) {
    auto const expected = fmt::format("the header {}", fmt::join(names, ","));
    if (!lines.next()) throw FormatError("it is empty, expected " + expected);
    if (auto columns = find(lines, names)) return std::move(*columns);
    unexpected(lines.number(), fmt::format("{}", fmt::join(lines.fields(), ",")), expected);
}

bool CsvColumns::next() {
    if (!lines_->next()) return false;
    if (lines_->fields().size() != places_.size())
        throw FormatError(line(), fmt::format("found {} fields, expected {}", lines_->fields().size(), places_.size()));
    return true;
}

}
