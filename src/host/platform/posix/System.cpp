#include "host/platform/System.h"

#include <algorithm>
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
#include <vector>

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

namespace {

// The number after a name in a text of lines "name number", or the first number of a text.
std::optional<std::uint64_t> numberIn(std::string const& path, std::string const& name = {}) {
    std::ifstream text(path);
    std::string word;
    while (!name.empty() && text >> word && word != name) {
    }
    std::uint64_t number = 0;
    return text >> number ? std::optional(number) : std::nullopt;
}

std::string lineOf(std::string const& path, std::string const& start) {
    std::ifstream text(path);
    for (std::string line; std::getline(text, line);)
        if (line.starts_with(start)) return line.substr(start.size());
    return {};
}

// Where a control group keeps its numbers. Pages of files that were not used lately can be given to others.
struct GroupFiles {
    std::string limit;
    std::string use;
    std::string statistics;
    char const* reclaimable;
};

// Nothing when the group is not limited.
std::optional<std::uint64_t> leftIn(GroupFiles const& group) {
    auto const most = numberIn(group.limit);
    auto const used = numberIn(group.use);
    if (!most || !used) return std::nullopt;
    std::uint64_t const reclaimable = numberIn(group.statistics, group.reclaimable).value_or(0);
    std::uint64_t const bound = *used - std::min(*used, reclaimable);
    return *most - std::min(*most, bound);
}

// Those of this process, in both versions of control groups; in a container they are at the top.
std::vector<GroupFiles> groups() {
    std::string const second = "/sys/fs/cgroup";
    std::string const own = second + lineOf("/proc/self/cgroup", "0::");
    std::string const first = "/sys/fs/cgroup/memory";
    return {{own + "/memory.max", own + "/memory.current", own + "/memory.stat", "inactive_file"},
        {second + "/memory.max", second + "/memory.current", second + "/memory.stat", "inactive_file"},
        {first + "/memory.limit_in_bytes", first + "/memory.usage_in_bytes", first + "/memory.stat",
            "total_inactive_file"}};
}

}

std::optional<std::uint64_t> availableMemory() {
    constexpr std::uint64_t kilobyte = 1024;
    auto available = numberIn("/proc/meminfo", "MemAvailable:");
    if (available) *available *= kilobyte;
    for (GroupFiles const& group : groups())
        if (auto const left = leftIn(group)) available = std::min(available.value_or(*left), *left);
    return available;
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
