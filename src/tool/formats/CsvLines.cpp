#include "tool/formats/CsvLines.h"

#include "tool/formats/NumberText.h"

#include <algorithm>

namespace cubes::tool {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

void skipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

// The place of the quote that ends a field whose first quote is the first character.
std::size_t closingQuote(std::string_view text) {
    auto quote = text.find('"', 1);
    while (quote != std::string_view::npos && text.substr(quote, 2) == "\"\"") quote = text.find('"', quote + 2);
    return quote;
}

}

CsvLines::CsvLines(std::string const& file, std::string_view text, ShareDone const& shareDone)
    : file_(file), text_(text), milestones_(text.size(), shareDone) {
    if (text_.substr(0, byteOrderMark.size()) == byteOrderMark) position_ = byteOrderMark.size();
}

bool CsvLines::next() {
    while (position_ < text_.size()) {
        auto const line = takeLine();
        milestones_.reached(position_);
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
    ++line_;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

// Every comma but one in quotes separates two fields.
void CsvLines::split(std::string_view line) {
    fields_.clear();
    for (;;) {
        fields_.push_back(takeField(line));
        if (line.empty()) return;
        line.remove_prefix(1);
    }
}

// Takes a field from the beginning of `rest` and leaves the comma behind it, or nothing.
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
    if (quote == std::string_view::npos) unexpected(place(), rest, "a field that ends with a quote");
    auto const field = trimmed(rest.substr(1, quote - 1));
    rest.remove_prefix(quote + 1);
    skipBlanks(rest);
    if (!rest.empty() && rest[0] != ',') unexpected(place(), rest, "a comma after a quoted field");
    return field;
}

}
