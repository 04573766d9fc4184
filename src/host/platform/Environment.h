#pragma once

#include <optional>
#include <string>

namespace cubes::platform {

/// A variable of the environment, in the narrow encoding; nothing when it is unset or empty.
std::optional<std::string> environment(char const* name);

}
