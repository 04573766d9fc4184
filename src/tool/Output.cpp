#include "tool/Output.h"

#include "tool/Errors.h"
#include "tool/Terminal.h"
#include "tool/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace cubes::tool {

namespace {

// Characters, not bytes: the continuation bytes of UTF-8 have no width.
std::size_t widthOf(std::string const& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string padded(std::string const& text, std::size_t width, bool toTheRight) {
    std::string const blanks(width - widthOf(text), ' ');
    return toTheRight ? blanks + text : text + blanks;
}

void endLine(std::string& text) {
    text.erase(text.find_last_not_of(' ') + 1);
    text += '\n';
}

/// One column of text, its title first.
struct TextColumn {
    std::vector<std::string> lines;
    bool numeric = true;
    std::size_t width = 0;

    void add(std::string line) {
        width = std::max(width, widthOf(line));
        lines.push_back(std::move(line));
    }
};

}

std::string plainText(Json const& value) {
    if (value.is_null()) return "-";
    if (value.is_string()) return escaped(value.get<std::string>());
    if (value.is_number_float() && std::isnan(value.get<double>())) return "-";
    if (value.is_number_float()) return fmt::format("{}", value.get<double>());
    return value.dump();
}

Table::Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

void Table::add(std::vector<Json> row) {
    rows_.push_back(std::move(row));
}

std::string Table::asText() const {
    if (rows_.empty()) return {};
    std::vector<TextColumn> shown;
    for (std::size_t c = 0; c < columns_.size(); ++c) {
        if (columns_[c].title.empty()) continue;
        auto& column = shown.emplace_back();
        column.add(columns_[c].title);
        for (auto const& row : rows_) {
            column.add(plainText(row[c]));
            column.numeric = column.numeric && (row[c].is_number() || row[c].is_null());
        }
    }
    std::string text;
    for (std::size_t line = 0; line <= rows_.size(); ++line) {
        std::string words;
        for (auto const& column : shown) words += padded(column.lines[line], column.width, column.numeric) + "  ";
        endLine(words);
        text += words;
    }
    return text;
}

Json Table::asJson() const {
    Json list = Json::array();
    for (auto const& row : rows_) {
        Json object = Json::object();
        for (std::size_t c = 0; c < columns_.size(); ++c)
            if (!columns_[c].key.empty()) object[columns_[c].key] = row[c];
        list.push_back(std::move(object));
    }
    return list;
}

void Record::add(std::string key, std::string label, Json value) {
    fields_.push_back({std::move(key), std::move(label), std::move(value)});
}

std::string Record::asText() const {
    std::size_t width = 0;
    for (auto const& field : fields_) width = std::max(width, widthOf(field.label));
    std::string text;
    for (auto const& field : fields_) {
        if (field.label.empty()) continue;
        text += padded(field.label, width, false) + "  " + plainText(field.value);
        text += '\n';
    }
    return text;
}

Json Record::asJson() const {
    Json object = Json::object();
    for (auto const& field : fields_) object[field.key] = field.value;
    return object;
}

namespace {

// File names need not be UTF-8, JSON must be.
std::string dumped(Json const& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

template <typename Shown>
std::string textIn(Form form, Shown const& shown) {
    return form == Form::json ? dumped(shown.asJson()) : shown.asText();
}

bool written(std::string const& text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

}

void Output::show(Table const& table) {
    add(textIn(form_, table));
}

void Output::show(Record const& record) {
    add(textIn(form_, record));
}

void Output::show(Json const& value) {
    add(dumped(value));
}

void Output::write() const {
    if (written(text_) || readerWentAway()) return;
    throw Failure(fmt::format("standard output: {}", std::strerror(errno)));
}

}
