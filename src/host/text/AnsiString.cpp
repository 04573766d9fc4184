#include <cubes/text/AnsiString.h>

AnsiString::AnsiString(char const* text) : text_(text ? text : "") {}

AnsiString::AnsiString(std::string text) : text_(std::move(text)) {}

AnsiString& AnsiString::operator+=(AnsiString const& tail) {
    text_ += tail.text_;
    return *this;
}
