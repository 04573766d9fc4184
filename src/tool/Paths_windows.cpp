#include "tool/Paths.h"

#include <windows.h>

namespace cubes::tool {

std::filesystem::path toPath(std::string const& text) {
    int const bytes = static_cast<int>(text.size());
    int const length = MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), length);
    return {wide};
}

// A letter that the code page does not have becomes "?", which no path holds, rather than one that looks alike.
std::string toText(std::filesystem::path const& path) {
    DWORD const flags = GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;
    std::wstring const& wide = path.native();
    int const units = static_cast<int>(wide.size());
    int const length = WideCharToMultiByte(CP_ACP, flags, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, flags, wide.data(), units, text.data(), length, nullptr, nullptr);
    return text;
}

}
