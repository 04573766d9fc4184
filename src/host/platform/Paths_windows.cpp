#include "host/platform/Paths.h"

#include "host/platform/NarrowText.h"

#include <windows.h>

namespace cubes::platform {

char pathDelimiter() {
    return '\\';
}

std::filesystem::path toPath(std::string_view text) {
    std::string const utf8 = toUtf8(text);
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string fromPath(std::filesystem::path const& path) {
    return toNarrow(path.native());
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

std::string withNativeDelimiters(std::string text) {
    return text;
}

std::string foldCase(std::string path) {
    CharLowerBuffA(path.data(), static_cast<DWORD>(path.size()));
    return path;
}

}
