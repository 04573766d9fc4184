#include "tool/formats/TntpScanner.h"

#include "tool/formats/NumberText.h"

#include <algorithm>

namespace cubes::tool {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isMark(char c) {
    return c == ':' || c == ';';
}

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
    if (atEnd()) unexpected(place(), {}, expected);
    if (text_[position_] != mark)
        unexpected(place(), isMark(text_[position_]) ? text_.substr(position_, 1) : word(), expected);
    ++position_;
}

// What comes up to one of the characters, or the end.
std::string_view TntpScanner::take(std::string_view stops) {
    auto const end = std::min(text_.find_first_of(stops, position_), text_.size());
    auto const taken = text_.substr(position_, end - position_);
    position_ = end;
    return taken;
}

}
