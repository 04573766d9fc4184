#pragma once

#include "tool/ExitCode.h"

namespace cubes::tool {

/// Reads the command line, runs the command and tells what went wrong.
ExitCode runTool(int argc, char** argv);

}
