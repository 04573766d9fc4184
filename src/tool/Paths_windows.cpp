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

std::string toText(std::filesystem::path const& path) {
    std::wstring const& wide = path.native();
    int const units = static_cast<int>(wide.size());
    int const length = WideCharToMultiByte(CP_ACP, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), units, text.data(), length, nullptr, nullptr);
    return text;
}

}
