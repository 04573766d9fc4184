#include <cubes/text/TRkString.h>

#include "host/platform/NarrowText.h"

#include <algorithm>
#include <charconv>

TRkString::TRkString(char const* text) : text_(text ? text : "") {}

TRkString::TRkString(std::string text) : text_(std::move(text)) {}

TRkString::TRkString(AnsiString const& text) : text_(text.c_str(), static_cast<std::size_t>(text.Length())) {}

char TRkString::operator[](int position) const noexcept {
    bool const inside = position >= 0 && position < Length();
    return inside ? text_[static_cast<std::size_t>(position)] : '\0';
}

TRkString TRkString::SubString(int start, int count) const {
    long long const from = std::clamp<long long>(start, 0, Length());
    long long const to = std::clamp<long long>(static_cast<long long>(start) + count, from, Length());
    return TRkString(text_.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
}

TRkString TRkString::Trim() const {
    auto const visible = [](char c) { return static_cast<unsigned char>(c) > ' '; };
    auto const first = std::find_if(text_.begin(), text_.end(), visible);
    auto const last = std::find_if(text_.rbegin(), text_.rend(), visible).base();
    return first < last ? TRkString(std::string(first, last)) : TRkString();
}

TRkString TRkString::Replace(TRkString const& from, TRkString const& to) const {
    if (from.IsEmpty()) return *this;
    std::string result = text_;
    for (std::size_t at = result.find(from.text_); at != std::string::npos;
         at = result.find(from.text_, at + to.text_.size()))
        result.replace(at, from.text_.size(), to.text_);
    return TRkString(std::move(result));
}

std::vector<TRkString> TRkString::Split(char separator) const {
    std::vector<TRkString> pieces;
    std::size_t start = 0;
    for (std::size_t end = text_.find(separator); end != std::string::npos; end = text_.find(separator, start)) {
        pieces.emplace_back(text_.substr(start, end - start));
        start = end + 1;
    }
    pieces.emplace_back(text_.substr(start));
    return pieces;
}

TRkString TRkString::ToLower() const {
    return TRkString(cubes::platform::asciiLower(text_));
}

int TRkString::ToInteger() const noexcept {
    char const* first = text_.data();
    char const* const last = first + text_.size();
    if (first != last && *first == '+') {
        ++first;
        if (first != last && *first == '-') return 0;
    }
    int number = 0;
    return std::from_chars(first, last, number).ec == std::errc() ? number : 0;
}

TRkString& TRkString::operator+=(TRkString const& tail) {
    text_ += tail.text_;
    return *this;
}

TRkString& TRkString::operator+=(char const* tail) {
    if (tail) text_ += tail;
    return *this;
}

TRkString& TRkString::operator+=(char tail) {
    text_ += tail;
    return *this;
}
