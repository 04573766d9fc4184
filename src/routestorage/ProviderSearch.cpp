// The search for the libraries of a route-storage provider, and the message when none can be loaded.

#include <cubes/routestorage/DynamiclinkLibraryT.h>
#include <cubes/text/TRkString.h>

#include "host/platform/Files.h"
#include "host/platform/Paths.h"
#include "host/platform/SharedLibrary.h"
#include "host/platform/System.h"

#include <algorithm>
#include <sstream>
#include <vector>

namespace platform = cubes::platform;

namespace {

// The directories before those of the system's loader, each with its delimiter. The variable is read at each load, so a
// program can choose its provider while it runs.
std::vector<std::string> searchedDirectories() {
    std::vector<std::string> directories;
    std::istringstream path(platform::environment("CUBES_PROVIDER_PATH").value_or(""));
    for (std::string directory; std::getline(path, directory, platform::searchPathDelimiter());)
        if (!directory.empty()) directories.push_back(directory + platform::pathDelimiter());
    if (std::string own = platform::ownDirectory(); !own.empty()) directories.push_back(std::move(own));
    return directories;
}

// A bare name leaves the search to the system's loader.
std::string fileToLoad(std::string const& library) {
    auto const directories = searchedDirectories();
    auto const holder = std::find_if(directories.begin(), directories.end(),
        [&library](std::string const& directory) { return platform::isRegularFile(directory + library); });
    return holder == directories.end() ? library : platform::absolutePath(*holder + library);
}

}

void* Pattern::DllNoUnloadpolicyA::load(std::string const& library) {
    return platform::loadLibraryFile(fileToLoad(library));
}

void* Pattern::DllNoUnloadpolicyA::find(void* module, std::string const& name) {
    return platform::findSymbol(module, name);
}

DllNotLoaded::DllNotLoaded(std::string library) : library_(std::move(library)) {}

DllNotLoaded::DllNotLoaded(DllNotLoaded const&) = default;
DllNotLoaded& DllNotLoaded::operator=(DllNotLoaded const&) = default;
DllNotLoaded::~DllNotLoaded() = default;

char const* DllNotLoaded::what() const noexcept {
    message_ = "Dll " + library_ + " not loaded";
    return message_.c_str();
}

std::string DllNotLoaded::Reason() const {
    std::string places;
    for (std::string const& directory : searchedDirectories()) places += directory + ", ";
    std::string const search = library_ + " was looked for in " + places + "and the system's library directories";
    if (Pattern::DllNoUnloadpolicyA::load(library_)) return search + "; it can be loaded by now";
    // On Windows the loader's message ends in a line end.
    return search + "; the loader says: " + TRkString(platform::loadFailure()).Trim().str();
}
