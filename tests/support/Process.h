#pragma once

#include <string>
#include <vector>

namespace cubes::test {

struct ProcessResult {
    int exitCode = -1;
    std::string output;
    std::string errors;
};

/// Runs a program with arguments (found by PATH) and waits until it exits.
ProcessResult run(std::vector<std::string> const& command);

/// Runs a Python program text with arguments, in the system's Python, which has h5py and numpy.
ProcessResult runPython(std::string const& program, std::vector<std::string> const& arguments = {});

}
