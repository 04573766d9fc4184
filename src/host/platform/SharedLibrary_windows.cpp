#include "host/platform/SharedLibrary.h"

#include "host/platform/Paths.h"

#include <windows.h>

#include <cstdint>
#include <filesystem>

namespace cubes::platform {

namespace {

// Paths may be longer than MAX_PATH.
constexpr DWORD longestPath = 32768;

}

char searchPathDelimiter() {
    return ';';
}

std::string ownDirectory() {
    constexpr DWORD byAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    if (!::GetModuleHandleExW(byAddress, reinterpret_cast<wchar_t const*>(&ownDirectory), &module)) return {};
    std::wstring file(longestPath, L'\0');
    file.resize(::GetModuleFileNameW(module, file.data(), longestPath));
    if (file.empty()) return {};
    return fromPath(std::filesystem::path(file).parent_path()) + pathDelimiter();
}

void* loadLibraryFile(std::string const& path) {
    if (path.find_first_of("\\/") == std::string::npos) return ::LoadLibraryA(path.c_str());
    // What the library itself needs is looked for beside it.
    return ::LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void* findSymbol(void* library, std::string const& name) {
    FARPROC const symbol = ::GetProcAddress(static_cast<HMODULE>(library), name.c_str());
    return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(symbol));
}

}
