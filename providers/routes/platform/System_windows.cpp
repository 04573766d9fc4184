#include "platform/System.h"

#include <windows.h>

#include <algorithm>
#include <system_error>

namespace cubes::routes::platform {

namespace {

constexpr std::size_t largestTransfer = std::size_t{1} << 30;

[[noreturn]] void fail(char const* action, DWORD failure = ::GetLastError()) {
    throw std::system_error(static_cast<int>(failure), std::system_category(), action);
}

// HDF5 opens a file so that nobody can replace it while it is read.
constexpr int mostAttempts = 50;
constexpr DWORD pauseInMilliseconds = 20;

bool isForAMoment(DWORD failure) {
    return failure == ERROR_SHARING_VIOLATION || failure == ERROR_ACCESS_DENIED;
}

// Neither a directory nor a file that its owner wants to stay as it is.
bool isReplaceable(std::string const& path) {
    constexpr DWORD unfit = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    DWORD const attributes = ::GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & unfit);
}

HANDLE handle(NativeFile file) {
    return reinterpret_cast<HANDLE>(file);
}

}

NativeFile createFile(std::string const& path) {
    HANDLE const opened = ::CreateFileA(
        path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) fail("cannot create a file beside it");
    return reinterpret_cast<NativeFile>(opened);
}

void writeFile(NativeFile file, std::span<std::byte const> bytes) {
    while (!bytes.empty()) {
        DWORD const wanted = static_cast<DWORD>(std::min(bytes.size(), largestTransfer));
        DWORD put = 0;
        if (!::WriteFile(handle(file), bytes.data(), wanted, &put, nullptr)) fail("cannot write");
        bytes = bytes.subspan(put);
    }
}

void flushFile(NativeFile file) {
    if (!::FlushFileBuffers(handle(file))) fail("cannot flush");
}

void closeFile(NativeFile file) noexcept {
    ::CloseHandle(handle(file));
}

void replaceFile(std::string const& from, std::string const& to) {
    constexpr DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    for (int attempts = 1; !::MoveFileExA(from.c_str(), to.c_str(), how); ++attempts) {
        DWORD const failure = ::GetLastError();
        if (attempts == mostAttempts || !isForAMoment(failure) || !isReplaceable(to))
            fail("cannot put the new file in place", failure);
        ::Sleep(pauseInMilliseconds);
    }
}

void discardFile(std::string const& path) noexcept {
    ::DeleteFileA(path.c_str());
}

std::uint64_t processId() {
    return ::GetCurrentProcessId();
}

char const* directoryEnds() noexcept {
    return "/\\:";
}

}
