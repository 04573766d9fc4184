#pragma once

#include <string>

namespace cubes::platform {

/// The name as it stands in the source for one that the compiler made; another stays as it is.
std::string demangled(char const* name);

}
