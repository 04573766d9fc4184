#include "host/platform/SharedLibrary.h"

#include <dlfcn.h>

namespace cubes::platform {

char searchPathDelimiter() {
    return ':';
}

std::string ownDirectory() {
    Dl_info code{};
    if (!::dladdr(reinterpret_cast<void const*>(&ownDirectory), &code) || !code.dli_fname) return {};
    std::string const file = code.dli_fname;
    // A program that was started by its bare name does not tell where it lies.
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
