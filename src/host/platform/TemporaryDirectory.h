#pragma once

#include <string>

namespace cubes::platform {

/// The user's temporary directory as the environment tells it, with a delimiter at its end; the
/// system's own when that is longer than 259 characters. Whether it exists is not looked at.
std::string temporaryDirectory();

}
