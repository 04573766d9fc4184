#include "host/platform/SharedLibrary.h"

#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"
#include "host/platform/System.h"

#include <windows.h>

#include <cstdint>

namespace cubes::platform {

char searchPathDelimiter() {
    return ';';
}

std::string moduleFile(void const* address) {
    constexpr DWORD byAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    // Paths may be longer than MAX_PATH.
    constexpr DWORD longestPath = 32768;
    HMODULE module = nullptr;
    if (!::GetModuleHandleExW(byAddress, static_cast<wchar_t const*>(address), &module)) return {};
    std::wstring file(longestPath, L'\0');
    file.resize(::GetModuleFileNameW(module, file.data(), longestPath));
    return toNarrow(file);
}

std::string ownDirectory() {
    std::string const file = moduleFile(reinterpret_cast<void const*>(&ownDirectory));
    return file.empty() ? file : fromPath(toPath(file).parent_path()) + pathDelimiter();
}

void* loadLibraryFile(std::string const& path) {
    if (path.find_first_of("\\/") == std::string::npos) return ::LoadLibraryA(path.c_str());
    // Libraries that it needs are searched in its own directory.
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
