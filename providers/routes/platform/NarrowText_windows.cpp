#include "platform/NarrowText.h"

#include <windows.h>

namespace cubes::routes::platform {

namespace {

std::wstring widened(std::string_view text, UINT codePage) {
    int const bytes = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    int const length = MultiByteToWideChar(codePage, 0, text.data(), bytes, wide.data(), bytes);
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

// A letter that the code page does not have becomes "?" rather than one that looks alike.
std::string narrowed(std::wstring const& wide, UINT codePage) {
    bool const isUtf8 = codePage == CP_UTF8 || GetACP() == CP_UTF8;
    DWORD const flags = isUtf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    int const units = static_cast<int>(wide.size());
    int const length = WideCharToMultiByte(codePage, flags, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(codePage, flags, wide.data(), units, text.data(), length, nullptr, nullptr);
    return text;
}

}

std::string toUtf8(std::string_view narrow) {
    return narrowed(widened(narrow, CP_ACP), CP_UTF8);
}

std::string fromUtf8(std::string_view utf8) {
    return narrowed(widened(utf8, CP_UTF8), CP_ACP);
}

}
