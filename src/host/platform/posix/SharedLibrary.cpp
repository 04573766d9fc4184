#include "host/platform/SharedLibrary.h"

#include "host/platform/Files.h"

#include <dlfcn.h>

namespace cubes::platform {

char searchPathDelimiter() {
    return ':';
}

namespace {

// Empty for a program that was started by its bare name.
std::string directoryOfThisCode() {
    std::string const file = moduleFile(reinterpret_cast<void const*>(&ownDirectory));
    auto const slash = file.rfind('/');
    return slash == std::string::npos ? "" : absolutePath(file.substr(0, slash)) + '/';
}

// The path may be relative to the working directory, which the application may change.
std::string const directoryWhenLoaded = directoryOfThisCode();

}

std::string moduleFile(void const* address) {
    Dl_info code{};
    return ::dladdr(address, &code) && code.dli_fname ? code.dli_fname : "";
}

std::string ownDirectory() {
    return directoryWhenLoaded;
}

void* loadLibraryFile(std::string const& path) {
    return ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string loadFailure() {
    char const* const message = ::dlerror();
    return message ? message : "";
}

void* findSymbol(void* library, std::string const& name) {
    return ::dlsym(library, name.c_str());
}

}
