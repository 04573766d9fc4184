#include "host/platform/FileView.h"

#include "host/platform/File.h"
#include "host/platform/SystemFailure.h"

#include <windows.h>

#include <utility>

namespace cubes::platform {

FileView FileView::open(std::string const& path) {
    File const file = File::openForReading(path);
    auto const size = static_cast<std::size_t>(file.size());
    if (size == 0) return FileView({});
    HANDLE const mapping =
        ::CreateFileMappingW(reinterpret_cast<HANDLE>(file.native()), nullptr, PAGE_WRITECOPY, 0, 0, nullptr);
    if (!mapping) throwSystemFailure("cannot map", path);
    void* const start = ::MapViewOfFile(mapping, FILE_MAP_COPY, 0, 0, 0);
    DWORD const failure = ::GetLastError();
    ::CloseHandle(mapping);
    if (!start) throwSystemFailure("cannot map", path, static_cast<int>(failure));
    return FileView({static_cast<std::byte*>(start), size});
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
