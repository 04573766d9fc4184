#include "host/platform/File.h"

#include "host/platform/Paths.h"
#include "host/platform/SystemFailure.h"
#include "host/platform/TemporaryFile.h"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace cubes::platform {

namespace fs = std::filesystem;

namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t largestTransfer = std::size_t{1} << 30;

HANDLE handle(std::intptr_t native) {
    return reinterpret_cast<HANDLE>(native);
}

// Names like "NUL" and "COM1" are those of devices in every directory.
std::intptr_t openFile(std::string const& path, DWORD access, DWORD disposition) {
    HANDLE const opened =
        ::CreateFileW(toPath(path).c_str(), access, shareAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE || ::GetFileType(opened) == FILE_TYPE_DISK)
        return reinterpret_cast<std::intptr_t>(opened);
    ::CloseHandle(opened);
    ::SetLastError(ERROR_INVALID_NAME);
    return reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE);
}

OVERLAPPED at(std::uint64_t offset) {
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(offset);
    position.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return position;
}

bool isReadOnly(fs::path const& path) {
    DWORD const attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY);
}

// Neither a directory nor a file that its owner wants to stay as it is.
bool isReplaceable(fs::path const& path) {
    DWORD const attributes = ::GetFileAttributesW(path.c_str());
    constexpr DWORD unfit = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & unfit);
}

// The end of the names of files that have been replaced while they were read.
constexpr wchar_t outdated[] = L".old.cubes-tmp";

// Removes them from a directory, but for those that are read still.
void removeOutdated(fs::path const& directory) {
    WIN32_FIND_DATAW entry{};
    HANDLE const search = ::FindFirstFileW((directory / (std::wstring(L".*") + outdated)).c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return;
    do ::DeleteFileW((directory / entry.cFileName).c_str());
    while (::FindNextFileW(search, &entry));
    ::FindClose(search);
}

// A name of its own beside a file.
fs::path nameBeside(fs::path const& file) {
    return toPath(temporaryPath(fromPath(file)));
}

// What is mapped can be moved but not removed, or not before it is mapped no more: it goes aside, and objects that
// still read it keep it.
bool removeOrSetAside(fs::path const& file, fs::path aside) {
    bool const isRemoved = ::DeleteFileW(file.c_str()) != FALSE;
    if (!isReplaceable(file)) return isRemoved;
    removeOutdated(file.parent_path());
    aside.replace_extension(outdated);
    if (!::MoveFileExW(file.c_str(), aside.c_str(), 0)) return false;
    ::DeleteFileW(aside.c_str());
    return true;
}

// Moves the old file away and puts the new one in its place.
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

}

File File::openForReading(std::string const& path) {
    std::intptr_t const opened = openFile(path, GENERIC_READ, OPEN_EXISTING);
    if (opened == none) throwSystemFailure("cannot open", path);
    return File(opened, path);
}

File File::createNew(std::string const& path) {
    std::intptr_t const opened = openFile(path, GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
    if (opened == none) throwSystemFailure("cannot create", path);
    return File(opened, path);
}

File File::openShared(std::string const& path) {
    std::intptr_t const opened = openFile(path, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
    if (opened == none) throwSystemFailure("cannot open", path);
    return File(opened, path);
}

File::File(File&& other) noexcept : native_(std::exchange(other.native_, none)), path_(std::move(other.path_)) {}

File& File::operator=(File&& other) noexcept {
    close();
    native_ = std::exchange(other.native_, none);
    path_ = std::move(other.path_);
    return *this;
}

File::~File() {
    close();
}

std::uint64_t File::size() const {
    LARGE_INTEGER size;
    if (!::GetFileSizeEx(handle(native_), &size)) throwSystemFailure("cannot examine", path_);
    return static_cast<std::uint64_t>(size.QuadPart);
}

void File::readAt(std::uint64_t offset, std::span<std::byte> bytes) const {
    while (!bytes.empty()) {
        OVERLAPPED position = at(offset);
        DWORD const wanted = static_cast<DWORD>(std::min(bytes.size(), largestTransfer));
        DWORD got = 0;
        if (!::ReadFile(handle(native_), bytes.data(), wanted, &got, &position))
            throwSystemFailure("cannot read", path_);
        if (got == 0) throwSystemFailure("cannot read past the end of", path_, ERROR_HANDLE_EOF);
        bytes = bytes.subspan(got);
        offset += got;
    }
}

void File::writeAt(std::uint64_t offset, std::span<std::byte const> bytes) {
    while (!bytes.empty()) {
        OVERLAPPED position = at(offset);
        DWORD const wanted = static_cast<DWORD>(std::min(bytes.size(), largestTransfer));
        DWORD put = 0;
        if (!::WriteFile(handle(native_), bytes.data(), wanted, &put, &position))
            throwSystemFailure("cannot write", path_);
        bytes = bytes.subspan(put);
        offset += put;
    }
}

void File::beginFlush(std::uint64_t, std::uint64_t) noexcept {}

void File::flush() {
    if (!::FlushFileBuffers(handle(native_))) throwSystemFailure("cannot flush", path_);
}

void File::close() noexcept {
    if (native_ != none) ::CloseHandle(handle(std::exchange(native_, none)));
}

// The system is not allowed to copy: on another volume that would be neither one step nor checked.
bool renameFile(std::string const& from, std::string const& to) {
    fs::path const source = toPath(from);
    fs::path const target = toPath(to);
    // New names are given without looking around.
    bool const replaces = isReplaceable(target);
    if (replaces) removeOutdated(target.parent_path());
    if (::MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) return true;
    DWORD const failure = ::GetLastError();
    if (failure == ERROR_NOT_SAME_DEVICE) return false;
    if (replaces && replaceInUse(source, target)) return true;
    throwSystemFailure("cannot put in place", to, static_cast<int>(failure));
}

void flushFile(std::string const& path) {
    HANDLE const opened = handle(openFile(path, GENERIC_WRITE, OPEN_EXISTING));
    DWORD failure = ::GetLastError();
    if (opened == INVALID_HANDLE_VALUE) {
        // The system lets only those flush who may write: what is read-only is left to it.
        if (isReadOnly(toPath(path))) return;
        throwSystemFailure("cannot open", path, static_cast<int>(failure));
    }
    bool const isFlushed = ::FlushFileBuffers(opened) != FALSE;
    failure = ::GetLastError();
    ::CloseHandle(opened);
    if (!isFlushed) throwSystemFailure("cannot flush", path, static_cast<int>(failure));
}

// The renaming itself writes through.
void flushDirectory(std::string const&) {}

bool discardFile(std::string const& path) noexcept {
    fs::path const file = toPath(path);
    return removeOrSetAside(file, nameBeside(file));
}

std::uint64_t processId() {
    return ::GetCurrentProcessId();
}

}
