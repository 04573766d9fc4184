#include "host/platform/Demangled.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace cubes::platform {

std::string demangled(char const* name) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 ? text.get() : name;
}

}
