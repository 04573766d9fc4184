#include "host/matrix/FailingSystem.h"

#include "support/platform/PretendedDisk.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <optional>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

// Functions with the names of C library functions: a program's own definition is found before the library's, also by
// the libraries that it uses.

namespace {

bool armed = false;
int callsLeft = 0;
int errorGiven = 0;
bool failed = false;
bool failsOnce = false;
bool kills = false;
std::string settledSteps;
int linkError = 0;
std::optional<cubes::test::PretendedDisk> smallDisk;
bool isReadOnly = false;
int removalError = 0;

bool mustFail() {
    if (!armed) return false;
    if (failed && failsOnce) return false;
    if (!failed && --callsLeft == 0) failed = true;
    if (failed && kills) _exit(1);
    if (failed) errno = errorGiven;
    return failed;
}

bool isRefused(int error) {
    errno = error;
    return true;
}

bool mustNotGrow(int file, off_t end) {
    return mustFail() || (smallDisk && !smallDisk->hasRoom(file, end) && isRefused(ENOSPC));
}

bool mustNotAppend(int file, size_t count) {
    return mustFail() || (smallDisk && !smallDisk->hasRoomFor(file, count) && isRefused(ENOSPC));
}

bool mustNotBeOpened(char const* path, int flags) {
    bool const changes = flags & (O_CREAT | O_WRONLY | O_RDWR);
    if (changes && isReadOnly && smallDisk->holds(path)) return isRefused(EROFS);
    return (flags & O_CREAT) && mustFail();
}

// Returns the system's result, and records a success.
int settle(int result, char const* step) {
    if (armed && result == 0) settledSteps += (settledSteps.empty() ? "" : " ") + std::string(step);
    return result;
}

bool isDirectory(int file) {
    struct stat status {};
    return fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
}

template <typename Function>
Function systems(char const* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}

#define CUBES_VISIBLE extern "C" __attribute__((visibility("default")))

CUBES_VISIBLE ssize_t pwrite(int file, void const* bytes, size_t count, off_t offset) {
    static auto const real = systems<ssize_t (*)(int, void const*, size_t, off_t)>("pwrite");
    return mustNotGrow(file, offset + static_cast<off_t>(count)) ? -1 : real(file, bytes, count, offset);
}

CUBES_VISIBLE ssize_t pwrite64(int file, void const* bytes, size_t count, off64_t offset) {
    static auto const real = systems<ssize_t (*)(int, void const*, size_t, off64_t)>("pwrite64");
    return mustNotGrow(file, offset + static_cast<off_t>(count)) ? -1 : real(file, bytes, count, offset);
}

CUBES_VISIBLE ssize_t write(int file, void const* bytes, size_t count) {
    static auto const real = systems<ssize_t (*)(int, void const*, size_t)>("write");
    return mustNotAppend(file, count) ? -1 : real(file, bytes, count);
}

// Flushes do nothing: no test here loses its power.
CUBES_VISIBLE int fsync(int file) {
    return mustFail() ? -1 : settle(0, isDirectory(file) ? "flush-directory" : "flush");
}

CUBES_VISIBLE int fdatasync(int) {
    return mustFail() ? -1 : 0;
}

CUBES_VISIBLE ssize_t copy_file_range(
    int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t count, unsigned flags) {
    static auto const real = systems<ssize_t (*)(int, off64_t*, int, off64_t*, size_t, unsigned)>("copy_file_range");
    return mustFail() ? -1 : real(from, fromOffset, to, toOffset, count, flags);
}

CUBES_VISIBLE int ftruncate64(int file, off64_t size) noexcept {
    static auto const real = systems<int (*)(int, off64_t)>("ftruncate64");
    return mustFail() ? -1 : real(file, size);
}

CUBES_VISIBLE int ftruncate(int file, off_t size) noexcept {
    static auto const real = systems<int (*)(int, off_t)>("ftruncate");
    return mustFail() ? -1 : real(file, size);
}

CUBES_VISIBLE int rename(char const* from, char const* to) noexcept {
    static auto const real = systems<int (*)(char const*, char const*)>("rename");
    return mustFail() ? -1 : settle(real(from, to), "rename");
}

CUBES_VISIBLE int link(char const* from, char const* to) noexcept {
    static auto const real = systems<int (*)(char const*, char const*)>("link");
    if (linkError == 0) return real(from, to);
    errno = linkError;
    return -1;
}

CUBES_VISIBLE int unlink(char const* path) noexcept {
    static auto const real = systems<int (*)(char const*)>("unlink");
    if (removalError == 0) return real(path);
    errno = removalError;
    return -1;
}

CUBES_VISIBLE int open(char const* path, int flags, ...) {
    static auto const real = systems<int (*)(char const*, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return mustNotBeOpened(path, flags) ? -1 : real(path, flags, mode);
}

namespace cubes::test {

RefusedLinks::RefusedLinks(int error) {
    linkError = error;
}

RefusedLinks::~RefusedLinks() {
    linkError = 0;
}

SmallDisk::SmallDisk(std::string directory, std::size_t kibibytes) : directory_(std::move(directory)) {
    std::string const size = "size=" + std::to_string(kibibytes) + "k";
    isMounted_ =
        !std::getenv("CUBES_TEST_NO_MOUNT") && mount("tmpfs", directory_.c_str(), "tmpfs", 0, size.c_str()) == 0;
    if (!isMounted_) smallDisk.emplace(directory_, kibibytes * 1024);
}

SmallDisk::~SmallDisk() {
    smallDisk.reset();
    isReadOnly = false;
    if (isMounted_) umount2(directory_.c_str(), MNT_DETACH);
}

void SmallDisk::makeReadOnly() {
    isReadOnly = !isMounted_;
    if (isMounted_) mount(nullptr, directory_.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr);
}

RefusedRemovals::RefusedRemovals(int error) {
    removalError = error;
}

RefusedRemovals::~RefusedRemovals() {
    removalError = 0;
}

FailingSystem::FailingSystem(int nth, int error, Failure failure) {
    failsOnce = failure == Failure::once;
    kills = failure == Failure::kill;
    callsLeft = nth;
    errorGiven = error;
    failed = false;
    settledSteps.clear();
    armed = true;
}

FailingSystem::~FailingSystem() {
    armed = false;
}

bool FailingSystem::hasFailed() const {
    return failed;
}

std::string FailingSystem::settled() const {
    return settledSteps;
}

}
