#pragma once

#include "host/platform/TemporaryFile.h"

#include <string>

namespace cubes::matrix {

/// Whether the rule of a file's directory asks that the file survives a power failure.
bool isToBeFlushed(std::string const& path);

/// Puts a complete file in place of its target, flushed as the rule of that directory asks. Throws
/// std::system_error.
void publish(platform::TemporaryFile& temporary);

}
