#include "host/platform/Files.h"

#include "host/platform/Paths.h"
#include "host/platform/System.h"
#include "host/platform/TemporaryFile.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

// The C++ library treats a link to a directory as the directory, and for a path of more than 260 characters it lists
// the current directory.
namespace cubes::platform {

namespace fs = std::filesystem;

namespace {

bool isReadOnly(fs::path const& path) {
    DWORD const attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY);
}

// Neither a directory nor a read-only file.
bool isReplaceable(fs::path const& path) {
    DWORD const attributes = ::GetFileAttributesW(path.c_str());
    constexpr DWORD unfit = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & unfit);
}

// The suffix of files that were replaced while they were being read.
constexpr wchar_t outdated[] = L".old.cubes-tmp";

// Removes such files from a directory, except those that are still being read.
void removeOutdated(fs::path const& directory) {
    WIN32_FIND_DATAW entry{};
    HANDLE const search = ::FindFirstFileW((directory / (std::wstring(L".*") + outdated)).c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return;
    do ::DeleteFileW((directory / entry.cFileName).c_str());
    while (::FindNextFileW(search, &entry));
    ::FindClose(search);
}

// A temporary name beside a file that may be the only copy.
fs::path nameBeside(fs::path const& file) {
    return toPath(oldPath(fromPath(file)));
}

// A mapped file can be renamed but not removed until it is unmapped: it is renamed, and objects that are reading it
// keep its content.
bool removeOrSetAside(fs::path const& file, fs::path aside) {
    bool const isRemoved = ::DeleteFileW(file.c_str()) != FALSE;
    if (!isReplaceable(file)) return isRemoved;
    removeOutdated(file.parent_path());
    aside.replace_extension(outdated);
    // Its reader may have closed it meanwhile, and so removed it.
    if (!::MoveFileExW(file.c_str(), aside.c_str(), 0)) return ::GetLastError() == ERROR_FILE_NOT_FOUND;
    ::DeleteFileW(aside.c_str());
    return true;
}

// Renames the old file and then gives the new one its name.
bool replaceInUse(fs::path const& from, fs::path const& to) {
    fs::path const old = nameBeside(to);
    if (!::MoveFileExW(to.c_str(), old.c_str(), MOVEFILE_REPLACE_EXISTING)) return false;
    if (!::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH)) {
        ::MoveFileExW(old.c_str(), to.c_str(), 0);
        return false;
    }
    removeOrSetAside(old, old);
    return true;
}

// Whether both are names of one file: it then has the new name already.
bool areLinksToOneFile(fs::path const& source, fs::path const& target) {
    std::error_code error;
    return fs::equivalent(source, target, error) && !error;
}

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

// Nothing when not all of them can be listed.
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

// The system must not copy: on another volume that would be neither atomic nor checked.
bool renameFile(std::string const& from, std::string const& to) {
    fs::path const source = toPath(from);
    fs::path const target = toPath(to);
    // A free name needs no search for outdated files.
    bool const replaces = isReplaceable(target);
    if (replaces) removeOutdated(target.parent_path());
    if (replaces && !isSamePath(from, to) && areLinksToOneFile(source, target))
        return ::DeleteFileW(source.c_str()) != FALSE;
    if (::MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) return true;
    DWORD const failure = ::GetLastError();
    if (failure == ERROR_NOT_SAME_DEVICE) return false;
    if (replaces && replaceInUse(source, target)) return true;
    throwSystemFailure("cannot put in place", to, static_cast<int>(failure));
}

void flushFile(std::string const& path) {
    // Flushing requires write permission: a read-only file is flushed by the system when it decides to.
    if (isReadOnly(toPath(path))) return;
    HANDLE const opened = ::CreateFileW(toPath(path).c_str(), GENERIC_WRITE,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) throwSystemFailure("cannot open", path);
    bool const isFlushed = ::FlushFileBuffers(opened) != FALSE;
    DWORD const failure = ::GetLastError();
    ::CloseHandle(opened);
    if (!isFlushed) throwSystemFailure("cannot flush", path, static_cast<int>(failure));
}

// The rename itself is written through.
void flushDirectory(std::string const&) {}

bool discardFile(std::string const& path) noexcept {
    fs::path const file = toPath(path);
    return removeOrSetAside(file, nameBeside(file));
}

// The system copies between names, not between open files.
void copyContent(std::string const& source, File& target) {
    // An error in opening the source names the source.
    File const original = File::openForReading(source);
    std::string const path = target.path();
    auto const copy = toPath(path);
    target.close();
    if (!::CopyFileW(toPath(source).c_str(), copy.c_str(), FALSE)) throwSystemFailure("cannot copy to", path);
    // A copy of a read-only file is read-only; this one is still to be flushed and renamed. It also has the time of the
    // source, by which it would be taken for a leftover.
    ::SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
    touch(path);
    target = File::openExisting(path);
}

bool touch(std::string const& path) noexcept {
    HANDLE const opened = ::CreateFileW(toPath(path).c_str(), FILE_WRITE_ATTRIBUTES,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return false;
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    bool const isSet = ::SetFileTime(opened, nullptr, nullptr, &now) != FALSE;
    ::CloseHandle(opened);
    return isSet;
}

void takeRights(File&, std::string const&) noexcept {}

void limitRights(File&, std::string const&) noexcept {}

bool removeTree(std::string const& directory) {
    Entry const entry = entryAt(toPath(directory));
    return entry.exists() && remove(entry);
}

bool copyTree(std::string const& source, std::string const& target, bool overwrite) {
    Entry const entry = entryAt(toPath(source));
    return entry.exists() && copy(entry, entryAt(toPath(target)), overwrite);
}

}
