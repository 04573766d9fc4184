#include "host/platform/System.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>

#include <windows.h>

namespace cubes::platform {

std::uint32_t lastError() {
    return ::GetLastError();
}

void setLastError(std::uint32_t code) {
    ::SetLastError(code);
}

std::optional<std::string> errorText(std::uint32_t code) {
    constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;
    constexpr DWORD language = 0x400;
    char* buffer = nullptr;
    DWORD const length = ::FormatMessageA(flags, nullptr, code, language, reinterpret_cast<char*>(&buffer), 0, nullptr);
    std::optional<std::string> text;
    if (length > 0) text.emplace(buffer, length);
    if (buffer) ::LocalFree(buffer);
    return text;
}

// The C library has its own copy, which SetEnvironmentVariable does not change.
std::optional<std::string> environment(char const* name) {
    LastErrorKept const kept;
    std::string value;
    // Another thread may make the value longer between two calls.
    for (DWORD length = ::GetEnvironmentVariableA(name, nullptr, 0); length > value.size();) {
        value.resize(length);
        length = ::GetEnvironmentVariableA(name, value.data(), length);
        if (length < value.size()) value.resize(length);
    }
    return value.empty() ? std::nullopt : std::optional(value);
}

std::string temporaryDirectory() {
    char directory[260];
    // The result is the required size if the text does not fit, and 0 for a failure.
    DWORD const length = ::GetTempPathA(sizeof directory, directory);
    if (length == 0 || length >= sizeof directory) return "c:\\temp\\";
    return {directory, length};
}

std::tm localTime() {
    std::time_t const now = std::time(nullptr);
    std::tm local{};
    ::localtime_s(&local, &now);
    return local;
}

std::uint64_t processId() {
    return ::GetCurrentProcessId();
}

std::optional<std::uint64_t> availableMemory() {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (!::GlobalMemoryStatusEx(&status)) return std::nullopt;
    return std::min<std::uint64_t>(status.ullAvailPhys, status.ullAvailPageFile);
}

void prepareStreams() {
    ::_setmode(::_fileno(stdout), _O_BINARY);
    ::_setmode(::_fileno(stderr), _O_BINARY);
    ::SetConsoleOutputCP(::GetACP());
}

bool messagesAreWatched() {
    return ::_isatty(::_fileno(stderr)) != 0;
}

// The C library reports it as an invalid argument. The last of these errors is Wine's.
bool readerWentAway() {
    auto const error = _doserrno;
    return error == ERROR_NO_DATA || error == ERROR_BROKEN_PIPE || error == ERROR_PIPE_NOT_CONNECTED;
}

bool isDebuggerAttached() {
    return ::IsDebuggerPresent() != FALSE;
}

void breakIntoDebugger() {
    ::DebugBreak();
}

void writeToDebugger(char const* text) {
    ::OutputDebugStringA(text);
}

void writeToDebugger(wchar_t const* text) {
    ::OutputDebugStringW(text);
}

unsigned long forkCount() noexcept {
    return 0;
}

}
