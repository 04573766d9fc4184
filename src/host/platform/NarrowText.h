#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The platform's narrow encoding (UTF-8 off Windows, the ANSI code page there) and others.
namespace cubes::platform {

/// The encoding's name as PostgreSQL knows it: "UTF8", "WIN1252".
std::string narrowEncoding();

std::string toUtf8(std::string_view narrow);
/// A character that the narrow encoding does not have becomes "?".
std::string fromUtf8(std::string_view utf8);
std::string toNarrow(std::wstring_view wide);

/// The first `count` characters; the whole text when it has no more.
std::string_view firstCharacters(std::string_view narrow, std::size_t count);

/// A UTF-8 text in lower case, letters beyond ASCII included.
std::string lowerCase(std::string_view utf8);

/// An ASCII letter in lower case, any other byte unchanged, in every locale.
constexpr char asciiLower(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}
inline std::string asciiLower(std::string text) {
    for (char& byte : text) byte = asciiLower(byte);
    return text;
}

}
