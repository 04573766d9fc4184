#include "host/platform/File.h"

#include "host/platform/System.h"

#include <utility>

namespace cubes::platform {

namespace {

class FileErrors : public std::error_category {
public:
    char const* name() const noexcept override { return "file"; }
    std::string message(int error) const override {
        return error == static_cast<int>(FileError::truncated) ? "it is truncated" : "it is not a regular file";
    }
    std::error_condition default_error_condition(int error) const noexcept override {
        bool const isTruncated = error == static_cast<int>(FileError::truncated);
        return std::make_error_condition(isTruncated ? std::errc::io_error : std::errc::invalid_argument);
    }
};

}

std::error_code make_error_code(FileError error) {
    static FileErrors const errors;
    return {static_cast<int>(error), errors};
}

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

ByteLock::ByteLock(File file) : file_(new File(std::move(file)), {forkCount()}) {}

void ByteLock::Releasing::operator()(File* file) const noexcept {
    if (forkCount() == forks) file->unlock();
    delete file;
}

std::optional<ByteLock> ByteLock::tryTake(std::string const& path, std::uint64_t position) {
    File file = File::openShared(path);
    return file.tryLock(position) ? std::optional(ByteLock(std::move(file))) : std::nullopt;
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
