#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cubes::platform {

/// One call that has not returned yet. A text is empty when it is unknown.
struct StackFrame {
    std::uintptr_t address = 0;
    /// The path of the program or library.
    std::string module;
    std::string function;
    std::optional<unsigned long> line;
};

/// The calls of this thread, the innermost first, at most 1024.
std::vector<StackFrame> callStack();

}
