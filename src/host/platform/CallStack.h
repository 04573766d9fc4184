#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cubes::platform {

/// One call that has not returned yet. A text is empty when the platform does not know it.
struct StackFrame {
    std::uintptr_t address = 0;
    /// The path of the program or library.
    std::string module;
    std::string function;
    std::optional<unsigned long> line;
};

/// The calls of this thread, the innermost first, beginning with the function that goes on at
/// `returnAddress`; all of them when there is none such. At most 1024; none where the platform can't walk the stack.
std::vector<StackFrame> callStack(void const* returnAddress);

}

/// Where the caller of the function goes on. A macro, since a function has an address of its own to return to.
#define CUBES_RETURN_ADDRESS() __builtin_extract_return_addr(__builtin_return_address(0))
