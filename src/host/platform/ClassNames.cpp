#include "host/platform/ClassNames.h"

#include <cxxabi.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <typeindex>

namespace cubes::platform {

namespace {

std::string demangled(std::type_info const& type) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const text(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return status == 0 ? text.get() : type.name();
}

}

char const* className(std::type_info const& type) {
    static std::mutex mutex;
    static std::map<std::type_index, std::string> names;
    std::lock_guard const lock(mutex);
    auto const known = names.find(type);
    if (known != names.end()) return known->second.c_str();
    return names.emplace(type, demangled(type)).first->second.c_str();
}

}
