#pragma once

#include <exception>

namespace cubes::tool {

/// What a finished command tells the shell. Scripts rely on the numbers: they are only ever added to.
enum class ExitCode : int {
    done = 0,
    /// Not found, or refused.
    refused = 1,
    /// Wrong usage.
    usage = 2,
    /// The database, the disk or a file failed.
    failed = 3,
};

/// The exit code that an error ends the tool with.
ExitCode exitCodeOf(std::exception const& error);

}
