#pragma once

#include <string>

namespace cubes::tool {

/// Messages go to the error stream, one line each, headed by the tool's name.
void tellError(std::string const& message);
void tellWarning(std::string const& message);
void tellNote(std::string const& message);

}
