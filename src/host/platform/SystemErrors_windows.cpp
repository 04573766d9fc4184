#include "host/platform/SystemErrors.h"

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

}
