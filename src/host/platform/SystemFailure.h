#pragma once

#include "host/platform/SystemErrors.h"

#include <string>
#include <system_error>

namespace cubes::platform {

/// Throws std::system_error: "cannot open /data/a.skm: Permission denied".
[[noreturn]] inline void throwSystemFailure(std::string const& action, std::string const& path, int code) {
    throw std::system_error(std::error_code(code, std::system_category()), action + " " + path);
}

/// The same with the calling thread's last error.
[[noreturn]] inline void throwSystemFailure(std::string const& action, std::string const& path) {
    throwSystemFailure(action, path, static_cast<int>(lastError()));
}

}
