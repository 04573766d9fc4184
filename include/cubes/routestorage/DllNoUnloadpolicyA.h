#pragma once

#include <cubes/Export.h>

#include <string>

namespace Pattern {

/// How DynamiclinkLibraryT treats a library: once loaded it stays until the process ends.
///
/// It is taken from the first directory of the environment variable CUBES_PROVIDER_PATH (":"
/// between directories, ";" on Windows; read at each load) that holds a file of its name, else from
/// beside this library, else from where the system looks for libraries.
struct CUBES_API DllNoUnloadpolicyA {
    /// Null when it cannot be loaded.
    static void* load(std::string const& library);
    /// Null when the module does not export that name.
    static void* find(void* module, std::string const& name);
    /// Leaves the module where it is.
    static void unload(void* /*module*/) noexcept {}
};

}
