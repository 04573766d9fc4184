#include "host/platform/File.h"

#include "host/platform/System.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace cubes::platform {

namespace {

// Locks of the open file rather than of the process: two objects of one process exclude each other, and closing another
// descriptor of the file releases nothing.
#ifdef F_OFD_SETLK
constexpr int setLock = F_OFD_SETLK;
constexpr int getLock = F_OFD_GETLK;
#else
constexpr int setLock = F_SETLK;
constexpr int getLock = F_GETLK;
#endif

struct flock exclusive(std::uint64_t position, std::uint64_t length) {
    struct flock request {};
    request.l_type = F_WRLCK;
    request.l_whence = SEEK_SET;
    request.l_start = static_cast<off_t>(position);
    request.l_len = static_cast<off_t>(length);
    return request;
}

int descriptor(std::intptr_t native) {
    return static_cast<int>(native);
}

struct stat statusOf(std::intptr_t native, std::string const& path) {
    struct stat status {};
    if (::fstat(descriptor(native), &status) != 0) throwSystemFailure("cannot examine", path);
    return status;
}

// Opens or creates a regular file, never through a link.
int openRegular(std::string const& path, int access) {
    int const opened = ::open(path.c_str(), access | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
    if (opened < 0) throwSystemFailure("cannot open", path);
    struct stat status {};
    if (::fstat(opened, &status) == 0 && S_ISREG(status.st_mode)) return opened;
    ::close(opened);
    throw std::system_error(make_error_code(FileError::notRegular), "cannot open " + path);
}

}

File File::openForReading(std::string const& path) {
    // Opening a named pipe must not block.
    int const opened = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (opened < 0) throwSystemFailure("cannot open", path);
    File file(opened, path);
    auto const mode = statusOf(opened, path).st_mode;
    if (S_ISDIR(mode)) throwSystemFailure("cannot open", path, EISDIR);
    if (!S_ISREG(mode)) throw std::system_error(make_error_code(FileError::notRegular), "cannot open " + path);
    return file;
}

File File::createNew(std::string const& path) {
    int const opened = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (opened < 0) throwSystemFailure("cannot create", path);
    return File(opened, path);
}

File File::createLike(std::string const& path, std::string const& model) {
    struct stat status {};
    bool const isKnown = ::stat(model.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    mode_t const mode = isKnown ? (status.st_mode & 0777) | S_IRUSR | S_IWUSR : 0666;
    int const opened = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (opened < 0) throwSystemFailure("cannot create", path);
    return File(opened, path);
}

File File::openExisting(std::string const& path) {
    // Opening a named pipe must not block.
    int const opened = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (opened < 0) throwSystemFailure("cannot open", path);
    File file(opened, path);
    if (!S_ISREG(statusOf(opened, path).st_mode))
        throw std::system_error(make_error_code(FileError::notRegular), "cannot open " + path);
    return file;
}

File File::openShared(std::string const& path) {
    return File(openRegular(path, O_RDWR), path);
}

File File::openLog(std::string const& path) {
    File file(openRegular(path, O_WRONLY | O_APPEND), path);
    if (statusOf(file.native_, path).st_nlink == 1) return file;
    throw std::system_error(make_error_code(FileError::notRegular), "cannot open " + path);
}

std::uint64_t File::size() const {
    return static_cast<std::uint64_t>(statusOf(native_, path_).st_size);
}

void File::readAt(std::uint64_t offset, std::span<std::byte> bytes) const {
    while (!bytes.empty()) {
        ssize_t const got = ::pread(descriptor(native_), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throwSystemFailure("cannot read", path_);
        if (got == 0) throw std::system_error(make_error_code(FileError::truncated), "cannot read " + path_);
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

void File::append(std::string_view text) {
    while (!text.empty()) {
        ssize_t const put = ::write(descriptor(native_), text.data(), text.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) throwSystemFailure("cannot write", path_);
        text.remove_prefix(static_cast<std::size_t>(put));
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

void File::finish() {
    if (native_ == none) return;
    if (::close(descriptor(std::exchange(native_, none))) != 0 && errno != EINTR)
        throwSystemFailure("cannot write", path_);
}

bool File::tryLock(std::uint64_t position) {
    struct flock request = exclusive(position, 1);
    if (::fcntl(descriptor(native_), setLock, &request) == 0) return true;
    if (errno == EAGAIN || errno == EACCES) return false;
    throwSystemFailure("cannot lock", path_);
}

bool File::isLockedByOthers(std::uint64_t position, std::uint64_t length) const {
    struct flock request = exclusive(position, length);
    if (::fcntl(descriptor(native_), getLock, &request) != 0) throwSystemFailure("cannot lock", path_);
    return request.l_type != F_UNLCK;
}

bool File::isRemoved() const {
    return statusOf(native_, path_).st_nlink == 0;
}

void File::unlock() noexcept {
    struct flock request = exclusive(0, 0);
    request.l_type = F_UNLCK;
    ::fcntl(descriptor(native_), setLock, &request);
}

FileView FileView::open(std::string const& path) {
    File const file = File::openForReading(path);
    auto const size = static_cast<std::size_t>(file.size());
    if (size == 0) return FileView({});
    // Private pages are created only for written data, so none are reserved beforehand.
    void* const start =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_NORESERVE, descriptor(file.native()), 0);
    if (start == MAP_FAILED) throwSystemFailure("cannot map", path);
    return FileView({static_cast<std::byte*>(start), size});
}

void FileView::unmap() noexcept {
    if (!bytes_.empty()) ::munmap(bytes_.data(), bytes_.size());
    bytes_ = {};
}

}
