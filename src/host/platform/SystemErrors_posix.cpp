#include "host/platform/SystemErrors.h"

#include <cerrno>
#include <cstring>
#include <limits>

namespace cubes::platform {

std::uint32_t lastError() {
    return static_cast<std::uint32_t>(errno);
}

void setLastError(std::uint32_t code) {
    errno = static_cast<int>(code);
}

std::optional<std::string> errorText(std::uint32_t code) {
    if (code > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) return std::nullopt;
    // strerrordesc_np knows which numbers have a text; strerror makes one up for the others.
    char const* const text = strerrordesc_np(static_cast<int>(code));
    return text ? std::optional<std::string>(text) : std::nullopt;
}

}
