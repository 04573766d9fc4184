#include "host/platform/Paths.h"

#include "host/platform/NarrowText.h"

#include <windows.h>

namespace cubes::platform {

namespace {

// The path of an existing file as the system stores it, by whatever name it was reached; empty when there is none.
std::filesystem::path finalPath(std::filesystem::path const& path) {
    constexpr DWORD everything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    constexpr DWORD longest = 32768;
    HANDLE const opened =
        ::CreateFileW(path.c_str(), 0, everything, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return {};
    std::wstring text(longest, L'\0');
    text.resize(::GetFinalPathNameByHandleW(opened, text.data(), longest, FILE_NAME_NORMALIZED));
    ::CloseHandle(opened);
    return text;
}

}

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

// The C++ library does not treat a path on a server as absolute.
std::filesystem::path fromRoot(std::filesystem::path const& path) {
    if (path.empty()) return path;
    std::wstring text(::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    text.resize(::GetFullPathNameW(path.c_str(), static_cast<DWORD>(text.size()), text.data(), nullptr));
    return text.empty() ? path : std::filesystem::path(text);
}

std::filesystem::path normalForm(std::filesystem::path const& path) {
    return fromRoot(path);
}

std::filesystem::path withoutLinks(std::filesystem::path const& path) {
    std::filesystem::path existing = fromRoot(path);
    std::filesystem::path rest;
    for (;;) {
        auto const final = finalPath(existing);
        if (!final.empty()) return rest.empty() ? final : final / rest;
        if (!existing.has_relative_path()) return fromRoot(path);
        rest = rest.empty() ? existing.filename() : existing.filename() / rest;
        existing = existing.parent_path();
    }
}

std::string resolved(std::string const& directory, std::string const& path) {
    auto const isDelimiter = [&path](std::size_t place) { return path[place] == '\\' || path[place] == '/'; };
    bool const isOnServer = path.size() > 2 && isDelimiter(0) && isDelimiter(1);
    return isOnServer ? path : fromPath(toPath(directory) / toPath(path));
}

std::string withNativeDelimiters(std::string text) {
    return text;
}

std::string foldCase(std::string const& path) {
    return fromUtf8(lowerCase(toUtf8(path)));
}

}
