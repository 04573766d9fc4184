#pragma once

#include <string>

#include <windows.h>

namespace cubes::platform {

/// The file of the program or library that an address lies in; empty when it is in none.
inline std::wstring moduleFile(void const* address) {
    constexpr DWORD byAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    // Paths may be longer than MAX_PATH.
    constexpr DWORD longestPath = 32768;
    HMODULE module = nullptr;
    if (!::GetModuleHandleExW(byAddress, static_cast<wchar_t const*>(address), &module)) return {};
    std::wstring file(longestPath, L'\0');
    file.resize(::GetModuleFileNameW(module, file.data(), longestPath));
    return file;
}

}
