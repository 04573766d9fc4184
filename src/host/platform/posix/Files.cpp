#include "host/platform/Files.h"

#include "host/platform/Paths.h"
#include "host/platform/System.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#ifdef __linux__
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace cubes::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t pieceSize = std::uint64_t{1} << 20;

int descriptorOf(File const& file) {
    return static_cast<int>(file.native());
}

// The permissions of a regular file; nothing for anything else.
std::optional<mode_t> rightsOf(std::string const& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return status.st_mode & 0777;
}

bool isSameInode(struct stat const& first, struct stat const& second) {
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// Whether both paths are one name in one directory.
bool isSameEntry(std::string const& first, std::string const& second) {
    struct stat directories[2] = {};
    return toPath(first).filename() == toPath(second).filename() &&
           ::stat(directoryOf(first).c_str(), &directories[0]) == 0 &&
           ::stat(directoryOf(second).c_str(), &directories[1]) == 0 && isSameInode(directories[0], directories[1]);
}

bool areTwoLinksToOneFile(std::string const& first, std::string const& second) {
    struct stat files[2] = {};
    return ::lstat(first.c_str(), &files[0]) == 0 && ::lstat(second.c_str(), &files[1]) == 0 &&
           isSameInode(files[0], files[1]) && files[0].st_nlink > 1 && !S_ISDIR(files[0].st_mode) &&
           !isSameEntry(first, second);
}

#ifdef __linux__

bool clone(File const& source, File const& target) {
    return ::ioctl(descriptorOf(target), FICLONE, descriptorOf(source)) == 0;
}

// Returns how many bytes the kernel has copied; not all file systems support it.
std::uint64_t copyInKernel(File const& source, File const& target, std::uint64_t size) {
    off_t from = 0;
    off_t to = 0;
    while (static_cast<std::uint64_t>(from) < size) {
        auto const rest = static_cast<std::size_t>(size - static_cast<std::uint64_t>(from));
        if (::copy_file_range(descriptorOf(source), &from, descriptorOf(target), &to, rest, 0) <= 0) break;
    }
    return static_cast<std::uint64_t>(from);
}

#else

bool clone(File const&, File const&) {
    return false;
}

std::uint64_t copyInKernel(File const&, File const&, std::uint64_t) {
    return 0;
}

#endif

}

// The system renames nothing when both names are links to one file, and reports success.
bool renameFile(std::string const& from, std::string const& to) {
    bool const isDone =
        areTwoLinksToOneFile(from, to) ? ::unlink(from.c_str()) == 0 : ::rename(from.c_str(), to.c_str()) == 0;
    if (isDone) return true;
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
    // Some file systems cannot flush directories and report EINVAL.
    if (failure != 0 && failure != EINVAL) throwSystemFailure("cannot flush", directory, failure);
}

bool discardFile(std::string const& path) noexcept {
    return ::unlink(path.c_str()) == 0;
}

void copyContent(std::string const& source, File& target) {
    File const original = File::openForReading(source);
    if (clone(original, target)) return;
    auto const size = original.size();
    std::vector<std::byte> buffer;
    for (auto done = copyInKernel(original, target, size); done < size; done += buffer.size()) {
        buffer.resize(static_cast<std::size_t>(std::min(size - done, pieceSize)));
        original.readAt(done, buffer);
        target.writeAt(done, buffer);
    }
}

bool touch(std::string const& path) noexcept {
    return ::utimensat(AT_FDCWD, path.c_str(), nullptr, 0) == 0;
}

void takeRights(File& file, std::string const& model) noexcept {
    if (auto const rights = rightsOf(model)) ::fchmod(descriptorOf(file), *rights);
}

void limitRights(File& file, std::string const& model) noexcept {
    struct stat own {};
    auto const rights = rightsOf(model);
    if (rights && ::fstat(descriptorOf(file), &own) == 0) ::fchmod(descriptorOf(file), own.st_mode & *rights);
}

bool removeTree(std::string const& directory) {
    std::error_code error;
    fs::remove_all(toPath(directory), error);
    return !error;
}

bool copyTree(std::string const& source, std::string const& target, bool overwrite) {
    auto const existing = overwrite ? fs::copy_options::overwrite_existing : fs::copy_options::none;
    std::error_code error;
    fs::copy(toPath(source), toPath(target), existing | fs::copy_options::recursive, error);
    return !error;
}

}
