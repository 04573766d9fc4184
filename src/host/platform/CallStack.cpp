#include "host/platform/CallStack.h"

#include <cxxabi.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <typeindex>

namespace cubes::platform {

char const* className(std::type_info const& type) {
    static std::mutex mutex;
    static std::map<std::type_index, std::string> names;
    std::lock_guard const lock(mutex);
    auto const known = names.find(type);
    if (known != names.end()) return known->second.c_str();
    return names.emplace(type, demangled(type.name())).first->second.c_str();
}

std::string demangled(char const* name) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 ? text.get() : name;
}

}
