#include "host/platform/SharedLibrary.h"

#include "host/platform/ModuleFile_windows.h"
#include "host/platform/Paths.h"
#include "host/platform/SystemErrors.h"

#include <windows.h>

#include <cstdint>
#include <filesystem>

namespace cubes::platform {

char searchPathDelimiter() {
    return ';';
}

std::string ownDirectory() {
    std::wstring const file = moduleFile(reinterpret_cast<void const*>(&ownDirectory));
    if (file.empty()) return {};
    return fromPath(std::filesystem::path(file).parent_path()) + pathDelimiter();
}

void* loadLibraryFile(std::string const& path) {
    if (path.find_first_of("\\/") == std::string::npos) return ::LoadLibraryA(path.c_str());
    // What the library itself needs is looked for beside it.
    return ::LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

std::string loadFailure() {
    return errorText(lastError()).value_or("");
}

void* findSymbol(void* library, std::string const& name) {
    FARPROC const symbol = ::GetProcAddress(static_cast<HMODULE>(library), name.c_str());
    return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(symbol));
}

}
