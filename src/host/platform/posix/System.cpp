#include "host/platform/System.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <limits>
#include <pthread.h>
#include <unistd.h>

namespace cubes::platform {

std::uint32_t lastError() {
    return static_cast<std::uint32_t>(errno);
}

void setLastError(std::uint32_t code) {
    errno = static_cast<int>(code);
}

std::optional<std::string> errorText(std::uint32_t code) {
    if (code > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) return std::nullopt;
    // strerrordesc_np knows which numbers have a text; strerror makes one up for the others.
    char const* const text = strerrordesc_np(static_cast<int>(code));
    return text ? std::optional<std::string>(text) : std::nullopt;
}

std::optional<std::string> environment(char const* name) {
    char const* const value = std::getenv(name);
    return value && *value ? std::optional<std::string>(value) : std::nullopt;
}

std::string temporaryDirectory() {
    constexpr std::size_t longest = 259;
    std::string directory = environment("TMPDIR").value_or("/tmp");
    if (!directory.ends_with('/')) directory += '/';
    return directory.size() > longest ? "/tmp/" : directory;
}

std::tm localTime() {
    std::time_t const now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return local;
}

std::uint64_t processId() {
    return static_cast<std::uint64_t>(::getpid());
}

// POSIX streams pass bytes unchanged.
void prepareStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    // The lowest free descriptor is the one that is closed.
    for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

bool messagesAreWatched() {
    return ::isatty(STDERR_FILENO) == 1;
}

bool readerWentAway() {
    return errno == EPIPE;
}

// Linux reports the process that traces this one, 0 for none. On other systems no debugger is ever detected.
bool isDebuggerAttached() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
        if (word == "TracerPid:") return status >> word && word != "0";
    return false;
}

void breakIntoDebugger() {
    std::raise(SIGTRAP);
}

void writeToDebugger(char const*) {}
void writeToDebugger(wchar_t const*) {}

unsigned long forkCount() noexcept {
    static std::atomic<unsigned long> forks = 0;
    [[maybe_unused]] static int const registered = pthread_atfork(nullptr, nullptr, [] { ++forks; });
    return forks.load(std::memory_order_relaxed);
}

}
