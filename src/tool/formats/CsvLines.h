#pragma once

#include "tool/formats/FormatError.h"
#include "tool/formats/Milestones.h"

#include <string>
#include <string_view>
#include <vector>

namespace cubes::tool {

/// Walks the lines of comma-separated values. Lines end in LF or CR LF; blank ones and a byte
/// order mark are passed over. Fields may stand in double quotes and between blanks; a quote
/// inside a quoted field stays doubled.
class CsvLines {
public:
    /// REQUIRES: the arguments outlive this object.
    CsvLines(std::string const& file, std::string_view text, ShareDone const& shareDone);

    /// Goes to the next line; false at the end.
    bool next();
    /// The fields of the line, valid until the next call of next().
    std::vector<std::string_view> const& fields() const noexcept { return fields_; }
    Place place() const { return {file_, line_}; }

private:
    std::string_view takeLine();
    void split(std::string_view line);
    std::string_view takeField(std::string_view& rest) const;
    std::string_view takeQuotedField(std::string_view& rest) const;

    std::string const& file_;
    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t line_ = 0;
    std::vector<std::string_view> fields_;
    Milestones milestones_;
};

}
