#pragma once

#include <cubes/Export.h>
#include <cubes/text/WholeNumber.h>

#include <compare>
#include <string>

#ifdef __CODEGEARC__
#include <System.hpp>
#else

/// A text of 8-bit characters in the platform's narrow encoding (UTF-8 off Windows).
/// A value: copying copies the text. Compilers that bring an AnsiString of their own use that one.
class CUBES_API AnsiString {
public:
    AnsiString() = default;
    /// A null pointer gives the empty text.
    AnsiString(char const* text);
    AnsiString(std::string text);
    /// The number in decimal.
    template <cubes::WholeNumber Number>
    explicit AnsiString(Number number) : text_(std::to_string(number)) {}

    char const* c_str() const noexcept { return text_.c_str(); }
    /// Length in bytes.
    int Length() const noexcept { return static_cast<int>(text_.size()); }
    bool IsEmpty() const noexcept { return text_.empty(); }
    std::string const& str() const noexcept { return text_; }

    AnsiString& operator+=(AnsiString const& tail);
    friend AnsiString operator+(AnsiString head, AnsiString const& tail) { return head += tail; }
    friend bool operator==(AnsiString const&, AnsiString const&) = default;
    friend std::strong_ordering operator<=>(AnsiString const&, AnsiString const&) = default;

private:
    std::string text_;
};

#endif
