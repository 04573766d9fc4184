#include "host/platform/SharedLibrary.h"

#include <dlfcn.h>

namespace cubes::platform {

char searchPathDelimiter() {
    return ':';
}

std::string moduleFile(void const* address) {
    Dl_info code{};
    return ::dladdr(address, &code) && code.dli_fname ? code.dli_fname : "";
}

std::string ownDirectory() {
    // Empty for a program that was started by its bare name.
    std::string const file = moduleFile(reinterpret_cast<void const*>(&ownDirectory));
    return file.substr(0, file.rfind('/') + 1);
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
