#include "host/platform/NarrowText.h"

#include <windows.h>

namespace cubes::platform {

namespace {

std::wstring widened(std::string_view text, UINT codePage) {
    int const bytes = static_cast<int>(text.size());
    int const length = MultiByteToWideChar(codePage, 0, text.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), bytes, wide.data(), length);
    return wide;
}

// A letter that the code page does not have becomes "?", which no path can contain, and not a similar letter, which
// could be the name of another file.
std::string narrowed(std::wstring_view wide, UINT codePage) {
    bool const isUtf8 = codePage == CP_UTF8 || GetACP() == CP_UTF8;
    DWORD const flags = isUtf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    int const units = static_cast<int>(wide.size());
    int const length = WideCharToMultiByte(codePage, flags, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(codePage, flags, wide.data(), units, text.data(), length, nullptr, nullptr);
    return text;
}

bool isText(std::string_view utf8) {
    int const bytes = static_cast<int>(utf8.size());
    return bytes == 0 || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), bytes, nullptr, 0) > 0;
}

std::string textInLowerCase(std::string_view utf8) {
    std::wstring wide = widened(utf8, CP_UTF8);
    CharLowerBuffW(wide.data(), static_cast<DWORD>(wide.size()));
    return narrowed(wide, CP_UTF8);
}

std::size_t sequenceLength(std::string_view utf8) {
    std::size_t length = 1;
    while (length < utf8.size() && (static_cast<unsigned char>(utf8[length]) & 0xC0u) == 0x80u) ++length;
    return length;
}

std::size_t characterLength(std::string_view text) {
    return text.size() > 1 && IsDBCSLeadByte(static_cast<BYTE>(text[0])) ? 2 : 1;
}

}

std::string narrowEncoding() {
    return GetACP() == CP_UTF8 ? "UTF8" : "WIN" + std::to_string(GetACP());
}

std::string toUtf8(std::string_view narrow) {
    return narrowed(widened(narrow, CP_ACP), CP_UTF8);
}

std::string fromUtf8(std::string_view utf8) {
    return narrowed(widened(utf8, CP_UTF8), CP_ACP);
}

std::string toNarrow(std::wstring_view wide) {
    return narrowed(wide, CP_ACP);
}

std::string_view firstCharacters(std::string_view narrow, std::size_t count) {
    std::size_t end = 0;
    for (; count > 0 && end < narrow.size(); --count) end += characterLength(narrow.substr(end));
    return narrow.substr(0, end);
}

std::string lowerCase(std::string_view utf8) {
    if (isText(utf8)) return textInLowerCase(utf8);
    // Invalid bytes are kept unchanged, and the text around them is converted.
    std::string result;
    while (!utf8.empty()) {
        std::string_view const sequence = utf8.substr(0, sequenceLength(utf8));
        result += isText(sequence) ? textInLowerCase(sequence) : std::string(sequence);
        utf8.remove_prefix(sequence.size());
    }
    return result;
}

}
