#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>

#include <compare>
#include <string>
#include <vector>

/// The text type of the library: 8-bit characters in the platform's narrow encoding. A value type.
/// Positions are zero-based and counted in bytes.
class CUBES_API TRkString {
public:
    TRkString() = default;
    /// A null pointer gives the empty text.
    TRkString(char const* text);
    TRkString(std::string text);
    TRkString(AnsiString const& text);
    /// The number in decimal.
    template <cubes::WholeNumber Number>
    explicit TRkString(Number number) : text_(std::to_string(number)) {}

    char const* c_str() const noexcept { return text_.c_str(); }
    std::string const& str() const noexcept { return text_; }
    AnsiString ToAnsiString() const { return AnsiString(text_); }

    int Length() const noexcept { return static_cast<int>(text_.size()); }
    bool IsEmpty() const noexcept { return text_.empty(); }
    /// The character at `position`; NUL outside the text.
    char operator[](int position) const noexcept;

    /// At most `count` characters from `start`; those outside the text are omitted.
    TRkString SubString(int start, int count) const;
    /// Without blanks and control characters at both ends.
    TRkString Trim() const;
    /// Every occurrence of `from` replaced by `to`; unchanged when `from` is empty.
    TRkString Replace(TRkString const& from, TRkString const& to) const;
    /// The pieces between the separators, one more than there are separators.
    std::vector<TRkString> Split(char separator) const;
    /// Converted to ASCII lower case.
    TRkString ToLower() const;
    /// The whole number the text begins with (sign and digits); 0 when it begins with none.
    int ToInteger() const noexcept;

    TRkString& operator+=(TRkString const& tail);
    TRkString& operator+=(char const* tail);
    TRkString& operator+=(char tail);
    template <cubes::WholeNumber Number>
    TRkString& operator+=(Number number) {
        text_ += std::to_string(number);
        return *this;
    }
    template <typename Tail>
    requires requires(TRkString& text, Tail const& tail) { text += tail; }
    friend TRkString operator+(TRkString head, Tail const& tail) {
        head += tail;
        return head;
    }

    friend bool operator==(TRkString const&, TRkString const&) = default;
    friend std::strong_ordering operator<=>(TRkString const&, TRkString const&) = default;

private:
    std::string text_;
};
