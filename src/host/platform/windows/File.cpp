#include "host/platform/File.h"

#include "host/platform/Paths.h"
#include "host/platform/System.h"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace cubes::platform {

namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t largestTransfer = std::size_t{1} << 30;

HANDLE handle(std::intptr_t native) {
    return reinterpret_cast<HANDLE>(native);
}

// Names like "NUL" and "COM1" are those of devices in every directory.
std::intptr_t openFile(std::string const& action, std::string const& path, DWORD access, DWORD disposition) {
    HANDLE const opened =
        ::CreateFileW(toPath(path).c_str(), access, shareAll, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) throwSystemFailure(action, path);
    if (::GetFileType(opened) == FILE_TYPE_DISK) return reinterpret_cast<std::intptr_t>(opened);
    ::CloseHandle(opened);
    throw std::system_error(make_error_code(FileError::notRegular), action + " " + path);
}

// Opens a regular file: a link itself and not its target, which is then refused.
std::intptr_t openRegular(std::string const& path, DWORD access, DWORD creation) {
    HANDLE const opened = ::CreateFileW(toPath(path).c_str(), access, shareAll, nullptr, creation,
        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (opened == INVALID_HANDLE_VALUE) throwSystemFailure("cannot open", path);
    BY_HANDLE_FILE_INFORMATION found{};
    bool const isKnown = ::GetFileType(opened) == FILE_TYPE_DISK && ::GetFileInformationByHandle(opened, &found);
    if (isKnown && !(found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT))
        return reinterpret_cast<std::intptr_t>(opened);
    ::CloseHandle(opened);
    throw std::system_error(make_error_code(FileError::notRegular), "cannot open " + path);
}

OVERLAPPED at(std::uint64_t offset) {
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(offset);
    position.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return position;
}

// False when somebody else holds one of the bytes.
bool lockBytes(File const& file, std::uint64_t position, std::uint64_t length, DWORD kind) {
    OVERLAPPED where = at(position);
    auto const low = static_cast<DWORD>(length);
    auto const high = static_cast<DWORD>(length >> 32);
    if (::LockFileEx(handle(file.native()), kind | LOCKFILE_FAIL_IMMEDIATELY, 0, low, high, &where)) return true;
    if (::GetLastError() == ERROR_LOCK_VIOLATION || ::GetLastError() == ERROR_IO_PENDING) return false;
    throwSystemFailure("cannot lock", file.path());
}

}

File File::openForReading(std::string const& path) {
    return File(openFile("cannot open", path, GENERIC_READ, OPEN_EXISTING), path);
}

File File::createNew(std::string const& path) {
    return File(openFile("cannot create", path, GENERIC_READ | GENERIC_WRITE, CREATE_NEW), path);
}

// A file gets the rights that its directory hands down.
File File::createLike(std::string const& path, std::string const&) {
    return createNew(path);
}

File File::openExisting(std::string const& path) {
    return File(openRegular(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING), path);
}

File File::openShared(std::string const& path) {
    return File(openRegular(path, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS), path);
}

File File::openLog(std::string const& path) {
    File file(openRegular(path, FILE_APPEND_DATA | FILE_READ_ATTRIBUTES, OPEN_ALWAYS), path);
    BY_HANDLE_FILE_INFORMATION found{};
    if (::GetFileInformationByHandle(handle(file.native_), &found) && found.nNumberOfLinks <= 1) return file;
    throw std::system_error(make_error_code(FileError::notRegular), "cannot open " + path);
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
        if (!::ReadFile(handle(native_), bytes.data(), wanted, &got, &position) && ::GetLastError() != ERROR_HANDLE_EOF)
            throwSystemFailure("cannot read", path_);
        if (got == 0) throw std::system_error(make_error_code(FileError::truncated), "cannot read " + path_);
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

void File::append(std::string_view text) {
    std::string lines;
    for (char const c : text) lines += c == '\n' ? std::string("\r\n") : std::string(1, c);
    DWORD put = 0;
    if (!::WriteFile(handle(native_), lines.data(), static_cast<DWORD>(lines.size()), &put, nullptr))
        throwSystemFailure("cannot write", path_);
}

void File::beginFlush(std::uint64_t, std::uint64_t) noexcept {}

void File::flush() {
    if (!::FlushFileBuffers(handle(native_))) throwSystemFailure("cannot flush", path_);
}

void File::close() noexcept {
    if (native_ != none) ::CloseHandle(handle(std::exchange(native_, none)));
}

void File::finish() {
    if (native_ == none) return;
    if (!::CloseHandle(handle(std::exchange(native_, none)))) throwSystemFailure("cannot write", path_);
}

bool File::tryLock(std::uint64_t position) {
    return lockBytes(*this, position, 1, LOCKFILE_EXCLUSIVE_LOCK);
}

// Windows has no question for locks: the bytes are locked for a moment, shared, so that two who ask and this file's own
// locks do not get in the way.
bool File::isLockedByOthers(std::uint64_t position, std::uint64_t length) const {
    if (!lockBytes(*this, position, length, 0)) return true;
    OVERLAPPED where = at(position);
    ::UnlockFileEx(handle(native_), 0, static_cast<DWORD>(length), static_cast<DWORD>(length >> 32), &where);
    return false;
}

// A removed file that others have open may keep its name, or be renamed, until they close it.
bool File::isRemoved() const {
    HANDLE const named = ::CreateFileW(
        toPath(path_).c_str(), FILE_READ_ATTRIBUTES, shareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (named == INVALID_HANDLE_VALUE) return true;
    BY_HANDLE_FILE_INFORMATION found{};
    BY_HANDLE_FILE_INFORMATION own{};
    bool const isKnown = ::GetFileInformationByHandle(named, &found) != FALSE;
    ::CloseHandle(named);
    if (!::GetFileInformationByHandle(handle(native_), &own)) throwSystemFailure("cannot examine", path_);
    return !isKnown || found.dwVolumeSerialNumber != own.dwVolumeSerialNumber ||
           found.nFileIndexHigh != own.nFileIndexHigh || found.nFileIndexLow != own.nFileIndexLow;
}

// Children inherit no files, so closing it is enough.
void File::unlock() noexcept {}

FileView FileView::open(std::string const& path) {
    File const file = File::openForReading(path);
    auto const size = static_cast<std::size_t>(file.size());
    if (size == 0) return FileView({});
    HANDLE const mapping = ::CreateFileMappingW(handle(file.native()), nullptr, PAGE_WRITECOPY, 0, 0, nullptr);
    if (!mapping) throwSystemFailure("cannot map", path);
    void* const start = ::MapViewOfFile(mapping, FILE_MAP_COPY, 0, 0, 0);
    DWORD const failure = ::GetLastError();
    ::CloseHandle(mapping);
    if (!start) throwSystemFailure("cannot map", path, static_cast<int>(failure));
    return FileView({static_cast<std::byte*>(start), size});
}

void FileView::unmap() noexcept {
    if (!bytes_.empty()) ::UnmapViewOfFile(bytes_.data());
    bytes_ = {};
}

}
