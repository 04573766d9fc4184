#pragma once

#include <filesystem>
#include <system_error>

namespace cubes::tool {

/// Gives a complete file another name, in place of another file or where none is, in one step, so that it is there
/// after a power failure too. Tells why it cannot be done; then nothing is.
std::error_code putInPlace(std::filesystem::path const& file, std::filesystem::path const& place);

}
