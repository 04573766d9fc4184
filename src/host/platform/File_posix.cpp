#include "host/platform/File.h"

#include "host/platform/SystemFailure.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace cubes::platform {

namespace {

int descriptor(std::intptr_t native) {
    return static_cast<int>(native);
}

struct stat statusOf(std::intptr_t native, std::string const& path) {
    struct stat status {};
    if (::fstat(descriptor(native), &status) != 0) throwSystemFailure("cannot examine", path);
    return status;
}

}

File File::openForReading(std::string const& path) {
    // Not blocking: a named pipe must not hold us up.
    int const opened = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (opened < 0) throwSystemFailure("cannot open", path);
    File file(opened, path);
    auto const mode = statusOf(opened, path).st_mode;
    if (S_ISDIR(mode)) throwSystemFailure("cannot open", path, EISDIR);
    if (!S_ISREG(mode)) throwSystemFailure("cannot open", path, EINVAL);
    return file;
}

File File::createNew(std::string const& path) {
    int const opened = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (opened < 0) throwSystemFailure("cannot create", path);
    return File(opened, path);
}

File File::openShared(std::string const& path) {
    int const opened = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (opened < 0) throwSystemFailure("cannot open", path);
    return File(opened, path);
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

std::uint64_t File::size() const {
    return static_cast<std::uint64_t>(statusOf(native_, path_).st_size);
}

void File::readAt(std::uint64_t offset, std::span<std::byte> bytes) const {
    while (!bytes.empty()) {
        ssize_t const got = ::pread(descriptor(native_), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throwSystemFailure("cannot read", path_);
        if (got == 0) throwSystemFailure("cannot read past the end of", path_, EIO);
        bytes = bytes.subspan(static_cast<std::size_t>(got));
        offset += static_cast<std::uint64_t>(got);
    }
}

void File::writeAt(std::uint64_t offset, std::span<std::byte const> bytes) {
    while (!bytes.empty()) {
        ssize_t const put = ::pwrite(descriptor(native_), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) throwSystemFailure("cannot write", path_);
        bytes = bytes.subspan(static_cast<std::size_t>(put));
        offset += static_cast<std::uint64_t>(put);
    }
}

void File::beginFlush([[maybe_unused]] std::uint64_t offset, [[maybe_unused]] std::uint64_t length) noexcept {
#ifdef SYNC_FILE_RANGE_WRITE
    ::sync_file_range(
        descriptor(native_), static_cast<off_t>(offset), static_cast<off_t>(length), SYNC_FILE_RANGE_WRITE);
#endif
}

void File::flush() {
    if (::fsync(descriptor(native_)) != 0) throwSystemFailure("cannot flush", path_);
}

void File::close() noexcept {
    if (native_ != none) ::close(descriptor(std::exchange(native_, none)));
}

bool renameFile(std::string const& from, std::string const& to) {
    if (::rename(from.c_str(), to.c_str()) == 0) return true;
    if (errno == EXDEV) return false;
    throwSystemFailure("cannot put in place", to);
}

void flushFile(std::string const& path) {
    File::openForReading(path).flush();
}

void flushDirectory(std::string const& directory) {
    int const opened = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) throwSystemFailure("cannot open", directory);
    int const failure = ::fsync(opened) == 0 ? 0 : errno;
    ::close(opened);
    // Some file systems have no flush for directories and say EINVAL.
    if (failure != 0 && failure != EINVAL) throwSystemFailure("cannot flush", directory, failure);
}

bool discardFile(std::string const& path) noexcept {
    return ::unlink(path.c_str()) == 0;
}

std::uint64_t processId() {
    return static_cast<std::uint64_t>(::getpid());
}

}
