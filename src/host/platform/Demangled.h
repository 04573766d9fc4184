#pragma once

#include <string>

namespace cubes::platform {

/// The name as it stands in the source for one that the compiler made; another stays as it is.
std::string demangled(char const* name);
/// The same for a name that may have lost its leading "_" where C puts one before every name.
std::string demangledWithoutUnderscore(char const* name);

}
