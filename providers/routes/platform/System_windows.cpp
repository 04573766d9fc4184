#include "platform/System.h"

#include <windows.h>

#include <algorithm>
#include <system_error>

namespace cubes::routes::platform {

namespace {

constexpr std::size_t largestTransfer = std::size_t{1} << 30;

[[noreturn]] void fail(char const* action) {
    throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), action);
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
    if (!::MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        fail("cannot put the new file in place");
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
