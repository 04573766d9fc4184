#include "host/platform/File.h"

#include <utility>

namespace cubes::platform {

File::File(File&& other) noexcept : native_(std::exchange(other.native_, none)), path_(std::move(other.path_)) {}

File& File::operator=(File&& other) noexcept {
    close();
    native_ = std::exchange(other.native_, none);
    path_ = std::move(other.path_);
    return *this;
}

File::~File() {
    close();
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

}
