#include "host/platform/LogFile.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace cubes::platform {

namespace {

// A write that goes beyond the limit for files, or into a pipe that nobody reads, raises a signal
// that would end the program. A log is no reason for that: the signal is held and thrown away.
class WriteSignalsHeld {
public:
    WriteSignalsHeld() {
        ::sigemptyset(&held_);
        for (int const signal : raised) ::sigaddset(&held_, signal);
        ::pthread_sigmask(SIG_BLOCK, &held_, &before_);
        ::sigpending(&pendingBefore_);
    }
    ~WriteSignalsHeld() {
        for (int const signal : raised) discard(signal);
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    WriteSignalsHeld(WriteSignalsHeld const&) = delete;
    WriteSignalsHeld& operator=(WriteSignalsHeld const&) = delete;

private:
    void discard(int signal) const {
        sigset_t pending;
        ::sigpending(&pending);
        if (::sigismember(&pendingBefore_, signal) == 1 || ::sigismember(&pending, signal) != 1) return;
        sigset_t wanted;
        ::sigemptyset(&wanted);
        ::sigaddset(&wanted, signal);
        int taken = 0;
        ::sigwait(&wanted, &taken);
    }

    static constexpr int raised[] = {SIGXFSZ, SIGPIPE};
    sigset_t held_{};
    sigset_t before_{};
    sigset_t pendingBefore_{};
};

int logDescriptor(std::intptr_t native) {
    return static_cast<int>(native);
}

ssize_t writeOnce(int file, std::string_view text) {
    ssize_t put = 0;
    do put = ::write(file, text.data(), text.size());
    while (put < 0 && errno == EINTR);
    return put;
}

// Cuts off what was appended last, unless someone else has appended since.
void takeBack(int file, ssize_t bytes) {
    off_t const end = ::lseek(file, 0, SEEK_CUR);
    struct stat status {};
    if (end < bytes || ::fstat(file, &status) != 0 || status.st_size != end) return;
    while (::ftruncate(file, end - bytes) != 0 && errno == EINTR) {
    }
}

}

std::optional<LogFile> LogFile::open(std::string const& path) {
    // Not blocking: a named pipe must not hold us up.
    constexpr int mode = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    int const opened = ::open(path.c_str(), mode, 0666);
    if (opened < 0) return std::nullopt;
    return LogFile(opened);
}

LogFile::LogFile(LogFile&& other) noexcept : native_(std::exchange(other.native_, none)) {}

LogFile& LogFile::operator=(LogFile&& other) noexcept {
    if (this == &other) return *this;
    close();
    native_ = std::exchange(other.native_, none);
    return *this;
}

LogFile::~LogFile() {
    close();
}

// The system appends what one write brings in one piece; a second write for the rest would not be part of it.
void LogFile::append(std::string_view text) {
    WriteSignalsHeld const held;
    ssize_t const put = writeOnce(logDescriptor(native_), text);
    if (put > 0 && static_cast<std::size_t>(put) < text.size()) takeBack(logDescriptor(native_), put);
}

void LogFile::close() noexcept {
    if (native_ != none) ::close(logDescriptor(std::exchange(native_, none)));
}

}
