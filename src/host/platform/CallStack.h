#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

/// The program's own names: of classes, and of the functions on the call stack.
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

/// The plain name of a class: "TRkSkimCube" on every platform. The text is valid as long as the program runs.
char const* className(std::type_info const& type);

/// The name in the source for a name that the compiler mangled; any other name unchanged.
std::string demangled(char const* name);

}
