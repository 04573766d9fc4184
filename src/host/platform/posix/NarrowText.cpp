#include "host/platform/NarrowText.h"

#include <clocale>
#include <cwctype>

namespace cubes::platform {

namespace {

// Letters are classified independently of the program's own locale, which may know ASCII only.
locale_t letters() {
    static locale_t const locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

std::size_t sequenceLength(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && length < 4 && isContinuation(text[length])) ++length;
    return length;
}

// The character of a sequence of two to four bytes.
char32_t decoded(std::string_view sequence) {
    char32_t const lead = static_cast<unsigned char>(sequence[0]);
    char32_t code = lead & (0x7Fu >> sequence.size());
    for (char const byte : sequence.substr(1)) code = code << 6 | (static_cast<unsigned char>(byte) & 0x3Fu);
    return code;
}

bool isWellFormed(std::string_view sequence) {
    unsigned const lead = static_cast<unsigned char>(sequence[0]);
    return sequence.size() > 1 && lead >> (7 - sequence.size()) == (2u << sequence.size()) - 2u;
}

void append(std::string& text, char32_t code) {
    auto const byte = [&text](char32_t bits) { text += static_cast<char>(static_cast<unsigned char>(bits)); };
    if (code < 0x80) return byte(code);
    if (code < 0x800)
        byte(0xC0u | code >> 6);
    else if (code < 0x10000) {
        byte(0xE0u | code >> 12);
        byte(0x80u | (code >> 6 & 0x3Fu));
    } else {
        byte(0xF0u | code >> 18);
        byte(0x80u | (code >> 12 & 0x3Fu));
        byte(0x80u | (code >> 6 & 0x3Fu));
    }
    byte(0x80u | (code & 0x3Fu));
}

}

std::string narrowEncoding() {
    return "UTF8";
}

std::string toUtf8(std::string_view narrow) {
    return std::string(narrow);
}

std::string fromUtf8(std::string_view utf8) {
    return std::string(utf8);
}

std::string toNarrow(std::wstring_view wide) {
    std::string text;
    for (wchar_t const character : wide) append(text, static_cast<char32_t>(character));
    return text;
}

std::string_view firstCharacters(std::string_view narrow, std::size_t count) {
    std::size_t end = 0;
    for (; count > 0 && end < narrow.size(); --count) end += sequenceLength(narrow.substr(end));
    return narrow.substr(0, end);
}

std::string lowerCase(std::string_view utf8) {
    std::string result;
    result.reserve(utf8.size());
    while (!utf8.empty()) {
        std::string_view const sequence = utf8.substr(0, sequenceLength(utf8));
        if (sequence.size() == 1)
            result += asciiLower(sequence[0]);
        else if (letters() && isWellFormed(sequence))
            append(result, static_cast<char32_t>(towlower_l(static_cast<wint_t>(decoded(sequence)), letters())));
        else
            result += sequence;
        utf8.remove_prefix(sequence.size());
    }
    return result;
}

}
