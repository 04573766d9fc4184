#include "host/platform/RemoveTree.h"

#include "host/platform/Paths.h"

#include <windows.h>

namespace cubes::platform {

namespace {

bool removeAny(std::wstring const& path, DWORD attributes);

bool isNavigation(std::wstring const& name) {
    return name == L"." || name == L"..";
}

bool removeContent(std::wstring const& directory) {
    WIN32_FIND_DATAW entry{};
    HANDLE const search = ::FindFirstFileW((directory + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return false;
    bool isGone = true;
    do {
        std::wstring const name = entry.cFileName;
        if (!isNavigation(name)) isGone = removeAny(directory + L"\\" + name, entry.dwFileAttributes) && isGone;
    } while (::FindNextFileW(search, &entry));
    ::FindClose(search);
    return isGone;
}

// The C++ library takes a link to a directory for the directory and would go into it.
bool removeAny(std::wstring const& path, DWORD attributes) {
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) return ::DeleteFileW(path.c_str()) != FALSE;
    bool const isLink = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    return (isLink || removeContent(path)) && ::RemoveDirectoryW(path.c_str());
}

}

bool removeTree(std::string const& directory) {
    std::wstring const path = toPath(directory).wstring();
    DWORD const attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && removeAny(path, attributes);
}

}
