#include "host/platform/LogFile.h"

#include "host/platform/Paths.h"

#include <windows.h>

#include <utility>

namespace cubes::platform {

namespace {

HANDLE logHandle(std::intptr_t native) {
    return reinterpret_cast<HANDLE>(native);
}

/// Finding the end and writing there is one step on a local disk, but not on every other: writers take turns.
class Turn {
public:
    explicit Turn(HANDLE file) : file_(file) {
        // A byte that no log will ever have, so that nobody is kept from reading.
        byte_.OffsetHigh = 0x7FFFFFFF;
        ::LockFileEx(file_, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &byte_);
    }
    ~Turn() { ::UnlockFileEx(file_, 0, 1, 0, &byte_); }
    Turn(Turn const&) = delete;
    Turn& operator=(Turn const&) = delete;

private:
    HANDLE file_;
    OVERLAPPED byte_{};
};

std::string withLineEnds(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 2);
    for (char const character : text) {
        if (character == '\n') result += '\r';
        result += character;
    }
    return result;
}

}

std::optional<LogFile> LogFile::open(std::string const& path) {
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // Without the right to write elsewhere, the system puts every write at the end of the file.
    constexpr DWORD access = FILE_APPEND_DATA | FILE_READ_DATA | SYNCHRONIZE;
    HANDLE const opened =
        ::CreateFileW(toPath(path).c_str(), access, shareAll, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return std::nullopt;
    return LogFile(reinterpret_cast<std::intptr_t>(opened));
}

LogFile::LogFile(LogFile&& other) noexcept : native_(std::exchange(other.native_, none)) {}

LogFile& LogFile::operator=(LogFile&& other) noexcept {
    if (this == &other) return *this;
    close();
    native_ = std::exchange(other.native_, none);
    return *this;
}

LogFile::~LogFile() {
    close();
}

// A disk without room for the whole takes nothing of it.
void LogFile::append(std::string_view text) {
    std::string const bytes = withLineEnds(text);
    Turn const turn(logHandle(native_));
    DWORD put = 0;
    ::WriteFile(logHandle(native_), bytes.data(), static_cast<DWORD>(bytes.size()), &put, nullptr);
}

void LogFile::close() noexcept {
    if (native_ != none) ::CloseHandle(logHandle(std::exchange(native_, none)));
}

}
