#include "host/platform/SharedLibrary.h"

#include "host/platform/Environment.h"
#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <sstream>
#include <vector>

namespace cubes::platform {

namespace {

// Read at each load, so that a program can choose its provider while it runs.
std::vector<std::string> searchedDirectories() {
    std::vector<std::string> directories;
    std::istringstream path(environment("CUBES_PROVIDER_PATH").value_or(""));
    for (std::string directory; std::getline(path, directory, searchPathDelimiter());)
        if (!directory.empty()) directories.push_back(directory + pathDelimiter());
    if (std::string own = ownDirectory(); !own.empty()) directories.push_back(std::move(own));
    return directories;
}

}

void* loadLibrary(std::string const& name) {
    for (std::string const& directory : searchedDirectories())
        if (isRegularFile(directory + name)) return loadLibraryFile(absolutePath(directory + name));
    return loadLibraryFile(name);
}

}
