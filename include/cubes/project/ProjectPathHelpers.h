#pragma once

#include <cubes/Export.h>
#include <cubes/text/AnsiString.h>

namespace ProjectPathHelpers {

/// The root of the project that `directory` lies in (the nearest directory upward with a
/// "cubes.toml"), else the directory itself; without a trailing delimiter.
CUBES_API AnsiString getProjectDirectory(AnsiString directory);

}
