#pragma once

#include "tool/formats/FormatError.h"

#include <string>
#include <string_view>

namespace cubes::tool {

/// Takes a TNTP text apart: its header into lines, its body into words and the marks ':' and ';'.
/// Comments count as blanks.
class TntpScanner {
public:
    /// REQUIRES: the arguments outlive this object.
    TntpScanner(std::string const& file, std::string_view text) : file_(file), text_(text) {}

    /// Whether nothing but blanks comes. Otherwise goes to what comes behind the blanks.
    bool atEnd();
    /// The rest of the line, without its comment and the blanks at its end.
    std::string_view restOfLine();
    /// The next word; empty when a mark comes, or the end of the text.
    std::string_view word();
    /// Passes over a mark, or throws FormatError when something else comes.
    void pass(char mark);

    std::size_t position() const noexcept { return position_; }
    Place place() const noexcept { return {file_, line_}; }

private:
    std::string_view take(std::string_view stops);

    std::string const& file_;
    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t line_ = 1;
};

}
