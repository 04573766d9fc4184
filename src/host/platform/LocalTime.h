#pragma once

#include <ctime>

namespace cubes::platform {

/// The date and time of day here and now.
std::tm localTime();

}
