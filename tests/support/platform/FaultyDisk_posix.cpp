// A library to be loaded before all others (LD_PRELOAD). Its functions replace those of the C library, for programs
// that a test runs:
//   CUBES_DISK       the directory that the pretended disk contains
//   CUBES_DISK_SIZE  its size in bytes: when it is full, writing fails
//   CUBES_KILL_AT    the process is killed before the n-th call that changes the disk or sends to a server
//   CUBES_SIGNAL     the number of the signal that it gets there in place of SIGKILL
//   CUBES_FAIL_AT    the n-th of these calls fails, unless it removes a file
//   CUBES_FAIL_WITH  the number of its error, EIO by default
//   CUBES_CALLS      a file that gets one byte for each such call

#include "support/platform/PretendedDisk.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <limits>
#include <optional>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/statvfs.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

using cubes::test::PretendedDisk;

std::uintmax_t numberIn(char const* variable, std::uintmax_t otherwise) {
    char const* const text = std::getenv(variable);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

template <typename Function>
Function systems(char const* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Calls before the variables are read, and those of this library itself, are not looked at.
thread_local bool isBusy = false;

class Faults {
public:
    // Counts a call, and may end the process in place of it; returns whether the call fails.
    bool count() {
        static auto const write = systems<ssize_t (*)(int, void const*, size_t)>("write");
        if (log_ >= 0 && write(log_, ".", 1) != 1) std::abort();
        auto const call = ++calls_;
        if (call == killAt_) raise(static_cast<int>(numberIn("CUBES_SIGNAL", SIGKILL)));
        return call == failAt_;
    }

    int const error = static_cast<int>(numberIn("CUBES_FAIL_WITH", EIO));

    std::optional<PretendedDisk> const disk = [] {
        char const* const directory = std::getenv("CUBES_DISK");
        auto const bytes = numberIn("CUBES_DISK_SIZE", std::numeric_limits<std::uintmax_t>::max());
        return directory ? std::optional<PretendedDisk>(std::in_place, directory, bytes) : std::nullopt;
    }();

private:
    std::uintmax_t const killAt_ = numberIn("CUBES_KILL_AT", 0);
    std::uintmax_t const failAt_ = numberIn("CUBES_FAIL_AT", 0);
    int const log_ = [] {
        char const* const file = std::getenv("CUBES_CALLS");
        auto const open = systems<int (*)(char const*, int, ...)>("open");
        return file ? open(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600) : -1;
    }();
    std::atomic<std::uintmax_t> calls_ = 0;
};

Faults& faults() {
    static Faults all;
    return all;
}

// Calls `look` unless it is itself what calls; true when there is no disk to look at.
template <typename Look>
bool passes(Look const& look) {
    if (isBusy) return true;
    isBusy = true;
    int const error = errno;
    bool const isFine = !faults().disk || look(*faults().disk);
    errno = isFine ? error : ENOSPC;
    isBusy = false;
    return isFine;
}

// Whether the call is to be made.
template <typename PathOrFile>
bool mayChange(PathOrFile const& what) {
    bool fails = false;
    passes([&](PretendedDisk const& disk) {
        fails = disk.holds(what) && faults().count();
        return true;
    });
    if (fails) errno = faults().error;
    return !fails;
}

bool grows(int file, off_t end) {
    return mayChange(file) && passes([&](PretendedDisk const& disk) { return disk.hasRoom(file, end); });
}

bool appends(int file, std::size_t count) {
    return mayChange(file) && passes([&](PretendedDisk const& disk) { return disk.hasRoomFor(file, count); });
}

off_t behind(off_t place, std::size_t count) {
    return place + static_cast<off_t>(count);
}

}

#define CUBES_REPLACES(result, name, parameters)                                                                       \
    extern "C" __attribute__((visibility("default"))) result name parameters

// The system's own function of this name.
#define CUBES_REAL(name) static auto const real = systems<decltype(&name)>(#name)

#define CUBES_OPEN(name)                                                                                               \
    CUBES_REPLACES(int, name, (char const* path, int flags, ...)) {                                                    \
        CUBES_REAL(name);                                                                                              \
        va_list arguments;                                                                                             \
        va_start(arguments, flags);                                                                                    \
        mode_t const mode = flags & O_CREAT ? va_arg(arguments, mode_t) : 0;                                           \
        va_end(arguments);                                                                                             \
        bool const isFine = !(flags & O_CREAT) || mayChange(std::string(path));                                        \
        return isFine ? real(path, flags, mode) : -1;                                                                  \
    }
CUBES_OPEN(open)
CUBES_OPEN(open64)

CUBES_REPLACES(ssize_t, write, (int file, void const* bytes, size_t count)) {
    CUBES_REAL(write);
    return appends(file, count) ? real(file, bytes, count) : -1;
}

CUBES_REPLACES(ssize_t, writev, (int file, iovec const* pieces, int count)) {
    CUBES_REAL(writev);
    std::size_t bytes = 0;
    for (int i = 0; i < count; ++i) bytes += pieces[i].iov_len;
    return appends(file, bytes) ? real(file, pieces, count) : -1;
}

CUBES_REPLACES(ssize_t, pwrite, (int file, void const* bytes, size_t count, off_t place)) {
    CUBES_REAL(pwrite);
    return grows(file, behind(place, count)) ? real(file, bytes, count, place) : -1;
}

CUBES_REPLACES(ssize_t, pwrite64, (int file, void const* bytes, size_t count, off64_t place)) {
    CUBES_REAL(pwrite64);
    return grows(file, behind(place, count)) ? real(file, bytes, count, place) : -1;
}

CUBES_REPLACES(
    ssize_t, copy_file_range, (int from, off64_t* fromPlace, int to, off64_t* toPlace, size_t count, unsigned flags)) {
    CUBES_REAL(copy_file_range);
    bool const isFine = toPlace ? grows(to, behind(*toPlace, count)) : appends(to, count);
    return isFine ? real(from, fromPlace, to, toPlace, count, flags) : -1;
}

CUBES_REPLACES(ssize_t, sendfile, (int to, int from, off_t* place, size_t count) noexcept) {
    CUBES_REAL(sendfile);
    return appends(to, count) ? real(to, from, place, count) : -1;
}

CUBES_REPLACES(int, ftruncate, (int file, off_t size) noexcept) {
    CUBES_REAL(ftruncate);
    return mayChange(file) ? real(file, size) : -1;
}

CUBES_REPLACES(int, ftruncate64, (int file, off64_t size) noexcept) {
    CUBES_REAL(ftruncate64);
    return mayChange(file) ? real(file, size) : -1;
}

CUBES_REPLACES(int, fsync, (int file)) {
    CUBES_REAL(fsync);
    return mayChange(file) ? real(file) : -1;
}

CUBES_REPLACES(int, fdatasync, (int file)) {
    CUBES_REAL(fdatasync);
    return mayChange(file) ? real(file) : -1;
}

CUBES_REPLACES(int, rename, (char const* from, char const* to) noexcept) {
    CUBES_REAL(rename);
    return mayChange(std::string(to)) ? real(from, to) : -1;
}

CUBES_REPLACES(int, link, (char const* from, char const* to) noexcept) {
    CUBES_REAL(link);
    return mayChange(std::string(to)) ? real(from, to) : -1;
}

// A removal does not fail: what cannot be removed has to stay.
CUBES_REPLACES(int, unlink, (char const* path) noexcept) {
    CUBES_REAL(unlink);
    static_cast<void>(mayChange(std::string(path)));
    return real(path);
}

CUBES_REPLACES(int, remove, (char const* path) noexcept) {
    CUBES_REAL(remove);
    static_cast<void>(mayChange(std::string(path)));
    return real(path);
}

CUBES_REPLACES(int, statvfs, (char const* path, struct statvfs* space) noexcept) {
    static auto const real = systems<int (*)(char const*, struct statvfs*)>("statvfs");
    int const result = real(path, space);
    passes([&](PretendedDisk const& disk) {
        if (disk.holds(std::string(path))) space->f_bfree = space->f_bavail = disk.room() / space->f_frsize;
        return true;
    });
    return result;
}

// What a server gets changes its database.
CUBES_REPLACES(ssize_t, send, (int socket, void const* bytes, size_t count, int flags)) {
    CUBES_REAL(send);
    passes([](PretendedDisk const&) { return faults().count(), true; });
    return real(socket, bytes, count, flags);
}
