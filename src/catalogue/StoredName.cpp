#include "catalogue/StoredName.h"

#include "host/platform/Paths.h"

#include <string_view>

namespace cubes {

namespace {

constexpr std::string_view delimiters = "\\/";

bool isAbsolute(std::string const& name) {
    bool const hasDrive = name.size() > 1 && name[1] == ':';
    return hasDrive || delimiters.find(name.front()) != std::string_view::npos;
}

// "." and ".." and empty parts name directories, never a file of ours; ".." leads out.
bool isPlainPart(std::string_view part) {
    return !part.empty() && part != "." && part != "..";
}

}

bool isUsableStoredName(std::string const& name) {
    if (name.empty() || isAbsolute(name) || name.find('\0') != std::string::npos) return false;
    std::size_t start = 0;
    for (std::size_t end = 0; end != std::string::npos; start = end + 1) {
        end = name.find_first_of(delimiters, start);
        if (!isPlainPart(std::string_view(name).substr(start, end == std::string::npos ? end : end - start)))
            return false;
    }
    return true;
}

std::string storedPath(std::string const& directory, std::string const& name) {
    if (!isUsableStoredName(name)) return {};
    return directory + platform::withNativeDelimiters(name);
}

}
