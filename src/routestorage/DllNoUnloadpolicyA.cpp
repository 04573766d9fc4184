#include <cubes/routestorage/DllNoUnloadpolicyA.h>

#include "host/platform/SharedLibrary.h"

void* Pattern::DllNoUnloadpolicyA::load(std::string const& library) {
    return cubes::platform::loadLibrary(library);
}

void* Pattern::DllNoUnloadpolicyA::find(void* module, std::string const& name) {
    return cubes::platform::findSymbol(module, name);
}
