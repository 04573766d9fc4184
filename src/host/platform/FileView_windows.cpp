#include "host/platform/FileView.h"

#include "host/platform/File.h"
#include "host/platform/SystemFailure.h"

#include <windows.h>

#include <utility>

namespace cubes::platform {

namespace {

std::span<std::byte> mapped(std::string const& path, DWORD protection, DWORD access) {
    File const file = File::openForReading(path);
    auto const size = static_cast<std::size_t>(file.size());
    if (size == 0) return {};
    HANDLE const mapping =
        ::CreateFileMappingW(reinterpret_cast<HANDLE>(file.native()), nullptr, protection, 0, 0, nullptr);
    if (!mapping) throwSystemFailure("cannot map", path);
    void* const start = ::MapViewOfFile(mapping, access, 0, 0, 0);
    DWORD const failure = ::GetLastError();
    ::CloseHandle(mapping);
    if (!start) throwSystemFailure("cannot map", path, static_cast<int>(failure));
    return {static_cast<std::byte*>(start), size};
}

}

FileView FileView::open(std::string const& path) {
    return FileView(mapped(path, PAGE_WRITECOPY, FILE_MAP_COPY));
}

FileView FileView::openUnchanged(std::string const& path) {
    return FileView(mapped(path, PAGE_READONLY, FILE_MAP_READ));
}

FileView::FileView(FileView&& other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}

FileView& FileView::operator=(FileView&& other) noexcept {
    unmap();
    bytes_ = std::exchange(other.bytes_, {});
    return *this;
}

FileView::~FileView() {
    unmap();
}

void FileView::unmap() noexcept {
    if (!bytes_.empty()) ::UnmapViewOfFile(bytes_.data());
    bytes_ = {};
}

}
