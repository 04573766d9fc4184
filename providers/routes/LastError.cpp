#include "LastError.h"

#include <array>
#include <cstring>
#include <string_view>

namespace {

// Without a destructor, so that the text can still be read while the thread ends.
thread_local std::array<char, 8192> lastError{};

}

char const* VlInterfaceGetLastError() noexcept {
    return lastError.data();
}

void VlInterfaceSetLastError(char const* text) noexcept {
    std::string_view const kept = std::string_view(text).substr(0, lastError.size() - 1);
    std::memmove(lastError.data(), kept.data(), kept.size());
    lastError[kept.size()] = '\0';
}
