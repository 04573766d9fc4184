#include "host/platform/Tree.h"

#include "host/platform/Paths.h"

#include <windows.h>

#include <algorithm>
#include <optional>
#include <vector>

// The C++ library takes a link to a directory for the directory, and of a path of more than 260
// characters it lists the current directory.
namespace cubes::platform {

namespace fs = std::filesystem;

namespace {

struct Entry {
    fs::path path;
    DWORD attributes = INVALID_FILE_ATTRIBUTES;

    bool exists() const { return attributes != INVALID_FILE_ATTRIBUTES; }
    bool isDirectory() const { return exists() && (attributes & FILE_ATTRIBUTE_DIRECTORY); }
    bool isLink() const { return exists() && (attributes & FILE_ATTRIBUTE_REPARSE_POINT); }
};

Entry entryAt(fs::path const& path) {
    return {path, ::GetFileAttributesW(path.c_str())};
}

// Nothing where not all of them can be told.
std::optional<std::vector<Entry>> entriesIn(fs::path const& directory) {
    std::vector<Entry> entries;
    WIN32_FIND_DATAW found{};
    HANDLE const search = ::FindFirstFileW((directory / L"*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return std::nullopt;
    do {
        std::wstring const name = found.cFileName;
        if (name != L"." && name != L"..") entries.push_back({directory / name, found.dwFileAttributes});
    } while (::FindNextFileW(search, &found));
    bool const isAll = ::GetLastError() == ERROR_NO_MORE_FILES;
    ::FindClose(search);
    return isAll ? std::optional(entries) : std::nullopt;
}

template <typename Work>
bool forEachIn(fs::path const& directory, Work const& work) {
    auto const entries = entriesIn(directory);
    return entries && std::all_of(entries->begin(), entries->end(), work);
}

bool remove(Entry const& entry) {
    if (!entry.isDirectory()) return ::DeleteFileW(entry.path.c_str()) != FALSE;
    if (!entry.isLink() && !forEachIn(entry.path, remove)) return false;
    return ::RemoveDirectoryW(entry.path.c_str()) != FALSE;
}

bool copy(Entry const& source, Entry const& target, bool overwrite) {
    if (!source.isDirectory()) {
        fs::path const file = target.isDirectory() ? target.path / source.path.filename() : target.path;
        return ::CopyFileW(source.path.c_str(), file.c_str(), !overwrite) != FALSE;
    }
    if (!target.isDirectory() && !::CreateDirectoryW(target.path.c_str(), nullptr)) return false;
    return forEachIn(source.path,
        [&](Entry const& entry) { return copy(entry, entryAt(target.path / entry.path.filename()), overwrite); });
}

}

bool removeTree(std::string const& directory) {
    Entry const entry = entryAt(toPath(directory));
    return entry.exists() && remove(entry);
}

bool copyTree(std::string const& source, std::string const& target, bool overwrite) {
    Entry const entry = entryAt(toPath(source));
    return entry.exists() && copy(entry, entryAt(toPath(target)), overwrite);
}

}
