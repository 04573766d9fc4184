#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace cubes::platform {

/// The calling thread's last operating-system error: GetLastError, or errno off Windows.
std::uint32_t lastError();

/// The system's own text for an error number, as the system gives it (with its line end on
/// Windows); nothing when the system does not know the number.
std::optional<std::string> errorText(std::uint32_t code);

}
