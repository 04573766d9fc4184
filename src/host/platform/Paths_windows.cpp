#include "host/platform/Paths.h"

#include <windows.h>

namespace cubes::platform {

char pathDelimiter() {
    return '\\';
}

std::filesystem::path toPath(std::string_view text) {
    int const bytes = static_cast<int>(text.size());
    int const length = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), length);
    return std::filesystem::path(wide);
}

// A letter that the code page does not have becomes "?", which no name holds, rather than one that
// looks alike: that would be the name of another file.
std::string fromPath(std::filesystem::path const& path) {
    DWORD const flags = GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;
    std::wstring const& wide = path.native();
    int const units = static_cast<int>(wide.size());
    int const length = WideCharToMultiByte(CP_ACP, flags, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, flags, wide.data(), units, text.data(), length, nullptr, nullptr);
    return text;
}

// The C++ library does not know a path on a server for a whole one.
std::filesystem::path fromRoot(std::filesystem::path const& path) {
    if (path.empty()) return path;
    std::wstring text(::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    text.resize(::GetFullPathNameW(path.c_str(), static_cast<DWORD>(text.size()), text.data(), nullptr));
    return text.empty() ? path : std::filesystem::path(text);
}

std::filesystem::path normalForm(std::filesystem::path const& path) {
    return fromRoot(path);
}

std::string resolved(std::string const& directory, std::string const& path) {
    auto const isDelimiter = [&path](std::size_t place) { return path[place] == '\\' || path[place] == '/'; };
    bool const isOnServer = path.size() > 2 && isDelimiter(0) && isDelimiter(1);
    return isOnServer ? path : fromPath(toPath(directory) / toPath(path));
}

std::string toUtf8(std::string const& text) {
    std::u8string const utf8 = toPath(text).u8string();
    return {utf8.begin(), utf8.end()};
}

std::string withNativeDelimiters(std::string text) {
    return text;
}

std::string foldCase(std::string path) {
    CharLowerBuffA(path.data(), static_cast<DWORD>(path.size()));
    return path;
}

}
