#include "tool/PutInPlace.h"

#include <windows.h>

namespace cubes::tool {

namespace {

void flush(std::filesystem::path const& path) {
    HANDLE const opened = ::CreateFileW(
        path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return;
    ::FlushFileBuffers(opened);
    ::CloseHandle(opened);
}

}

std::error_code putInPlace(std::filesystem::path const& file, std::filesystem::path const& place) {
    flush(file);
    constexpr DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (::MoveFileExW(file.c_str(), place.c_str(), how)) return {};
    return {static_cast<int>(::GetLastError()), std::system_category()};
}

}
