#include "host/platform/FileView.h"

#include "host/platform/File.h"
#include "host/platform/SystemFailure.h"

#include <sys/mman.h>
#include <utility>

namespace cubes::platform {

FileView FileView::open(std::string const& path) {
    File const file = File::openForReading(path);
    auto const size = static_cast<std::size_t>(file.size());
    if (size == 0) return FileView({});
    // Private pages are made only for what is written, so none are set aside beforehand.
    void* const start =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_NORESERVE, static_cast<int>(file.native()), 0);
    if (start == MAP_FAILED) throwSystemFailure("cannot map", path);
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
    if (!bytes_.empty()) ::munmap(bytes_.data(), bytes_.size());
    bytes_ = {};
}

}
