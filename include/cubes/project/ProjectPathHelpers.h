#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>

namespace ProjectPathHelpers {

/// The root of the project that contains `directory` (the nearest directory upward with a "cubes.toml"), or the
/// directory itself outside of projects; without a trailing delimiter.
CUBES_API AnsiString getProjectDirectory(AnsiString directory);

}
