#include "host/platform/ClassNames.h"

#include "host/platform/Demangled.h"

#include <map>
#include <mutex>
#include <string>
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

}
