#include "host/platform/Environment.h"

#include <cstdlib>

namespace cubes::platform {

std::optional<std::string> environment(char const* name) {
    char const* const value = std::getenv(name);
    return value && *value ? std::optional<std::string>(value) : std::nullopt;
}

}
