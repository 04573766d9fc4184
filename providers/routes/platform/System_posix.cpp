#include "platform/System.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace cubes::routes::platform {

namespace {

[[noreturn]] void fail(char const* action, int error = errno) {
    throw std::system_error(error, std::system_category(), action);
}

int descriptor(NativeFile file) {
    return static_cast<int>(file);
}

// Some file systems have no flush for directories and say EINVAL.
void flushDirectoryOf(std::string const& path) {
    auto const directory = std::filesystem::path(path).parent_path();
    int const opened = ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) fail("cannot open its directory");
    int const error = ::fsync(opened) == 0 ? 0 : errno;
    ::close(opened);
    if (error != 0 && error != EINVAL) fail("cannot flush its directory", error);
}

}

NativeFile createFile(std::string const& path) {
    int const opened = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (opened < 0) fail("cannot create a file beside it");
    return opened;
}

void writeFile(NativeFile file, std::span<std::byte const> bytes) {
    while (!bytes.empty()) {
        ssize_t const put = ::write(descriptor(file), bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) fail("cannot write");
        bytes = bytes.subspan(static_cast<std::size_t>(put));
    }
}

void flushFile(NativeFile file) {
    if (::fsync(descriptor(file)) != 0) fail("cannot flush");
}

void closeFile(NativeFile file) noexcept {
    ::close(descriptor(file));
}

void replaceFile(std::string const& from, std::string const& to) {
    if (::rename(from.c_str(), to.c_str()) != 0) fail("cannot put the new file in place");
    flushDirectoryOf(to);
}

void discardFile(std::string const& path) noexcept {
    ::unlink(path.c_str());
}

std::uint64_t processId() {
    return static_cast<std::uint64_t>(::getpid());
}

char const* directoryEnds() noexcept {
    return "/";
}

}
