#pragma once

#include <cubes/Export.h>

#include <compare>
#include <concepts>
#include <string>
#include <utility>

namespace cubes {

/// An integer type from which a text can be constructed: neither a character type nor bool.
template <typename T>
concept WholeNumber =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
    !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

}

#ifdef __CODEGEARC__
#include <System.hpp>
#else

/// A text of 8-bit characters in the platform's narrow encoding (UTF-8 off Windows). A value type.
/// Compilers with an AnsiString of their own use that one.
class CUBES_API AnsiString {
public:
    AnsiString() = default;
    /// A null pointer gives the empty text.
    AnsiString(char const* text) : text_(text ? text : "") {}
    AnsiString(std::string text) : text_(std::move(text)) {}
    /// The number in decimal.
    template <cubes::WholeNumber Number>
    explicit AnsiString(Number number) : text_(std::to_string(number)) {}

    char const* c_str() const noexcept { return text_.c_str(); }
    /// Length in bytes.
    int Length() const noexcept { return static_cast<int>(text_.size()); }
    bool IsEmpty() const noexcept { return text_.empty(); }
    std::string const& str() const noexcept { return text_; }

    AnsiString& operator+=(AnsiString const& tail) {
        text_ += tail.text_;
        return *this;
    }
    friend AnsiString operator+(AnsiString head, AnsiString const& tail) { return head += tail; }
    friend bool operator==(AnsiString const&, AnsiString const&) = default;
    friend std::strong_ordering operator<=>(AnsiString const&, AnsiString const&) = default;

private:
    std::string text_;
};

#endif
