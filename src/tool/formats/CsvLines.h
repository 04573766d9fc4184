#pragma once

#include "tool/Progress.h"

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace cubes::tool {

/// Iterates over the lines of comma-separated values. Lines end in LF or CR LF; blank ones and a byte
/// order mark are skipped. Fields may be in double quotes and between blanks; a quote inside a quoted
/// field stays doubled.
class CsvLines {
public:
    /// REQUIRES: the arguments outlive this object.
    CsvLines(std::string_view text, ProgressCallback const& progress);

    /// Goes to the next line; returns false at the end. Throws FormatError for a quoted field without an end.
    bool next();
    /// The fields of the line, valid until the next call of next().
    std::vector<std::string_view> const& fields() const noexcept { return fields_; }
    /// The number of the line in the file, from 1.
    std::size_t number() const noexcept { return number_; }

private:
    std::string_view takeLine();
    void split(std::string_view line);
    std::string_view takeField(std::string_view& rest) const;
    std::string_view takeQuotedField(std::string_view& rest) const;

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t number_ = 0;
    std::vector<std::string_view> fields_;
    ProgressThrottle throttle_;
};

/// Iterates over the lines below a header that holds each of the expected names once, in any order and
/// letter case.
class CsvColumns {
public:
    /// The columns of the header that `lines` is at; nothing when it is another header.
    /// REQUIRES: `lines` outlives the result.
    static std::optional<CsvColumns> find(CsvLines& lines, std::span<std::string_view const> names);
    /// Goes to the first line, the header. Throws FormatError when it is another one or there is none.
    static CsvColumns require(CsvLines& lines, std::span<std::string_view const> names);

    /// Goes to the next line; returns false at the end. Throws FormatError for more or fewer fields.
    bool next();
    /// The field in a column, by its index among the expected names.
    std::string_view operator[](std::size_t column) const { return lines_->fields()[places_[column]]; }
    std::size_t line() const noexcept { return lines_->number(); }

private:
    explicit CsvColumns(CsvLines& lines) : lines_(&lines) {}

    CsvLines* lines_;
    std::vector<std::size_t> places_;
};

}
