#include "host/platform/ChildProcess.h"

#include "host/platform/System.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <limits>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace cubes::platform {

namespace {

// The child's descriptors: its standard ones, and then the file.
constexpr int given = 3;
constexpr int firstUnused = given + 1;
constexpr int longestWait = std::numeric_limits<int>::max();

// One end of a pair of sockets. Unlike a pipe, a socket reports a child that has ended without a signal.
class Socket {
public:
    explicit Socket(int descriptor) : descriptor_(descriptor) {}
    Socket(Socket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    ~Socket() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    int get() const noexcept { return descriptor_; }

private:
    int descriptor_;
};

// Beyond the descriptors that the child receives, which are assigned one after the other.
Socket beyondGiven(int descriptor, std::string const& program) {
    int const copy = ::fcntl(descriptor, F_DUPFD_CLOEXEC, firstUnused);
    if (copy < 0) throwSystemFailure("cannot start", program);
    return Socket(copy);
}

struct Connection {
    Socket own;
    Socket childs;
};

Connection connect(std::string const& program) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) throwSystemFailure("cannot start", program);
    return {Socket(ends[0]), Socket(ends[1])};
}

class SpawnActions {
public:
    SpawnActions(int socket, int file) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_adddup2(&actions_, socket, STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions_, socket, STDOUT_FILENO);
        ::posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_adddup2(&actions_, file, given);
        ::posix_spawn_file_actions_addclosefrom_np(&actions_, firstUnused);
    }
    SpawnActions(SpawnActions const&) = delete;
    SpawnActions& operator=(SpawnActions const&) = delete;
    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }
    posix_spawn_file_actions_t const* get() const noexcept { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

// Signals as in a new program, and none from the terminal: the parent handles those.
class SpawnAttributes {
public:
    SpawnAttributes() {
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setpgroup(&attributes_, 0);
        ::posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    SpawnAttributes(SpawnAttributes const&) = delete;
    SpawnAttributes& operator=(SpawnAttributes const&) = delete;
    ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }
    posix_spawnattr_t const* get() const noexcept { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

pid_t spawn(std::string const& program, int socket, int file) {
    SpawnActions const actions(socket, file);
    SpawnAttributes const attributes;
    std::string const number = std::to_string(given);
    char* const arguments[] = {const_cast<char*>(program.c_str()), const_cast<char*>(number.c_str()), nullptr};
    pid_t child = -1;
    int const failure = ::posix_spawn(&child, program.c_str(), actions.get(), attributes.get(), arguments, environ);
    if (failure != 0) throwSystemFailure("cannot start", program, failure);
    return child;
}

// Where the application lets the system collect its children, the number of one that has ended may be another's by
// now. While it is still running, it is this one's.
void end(pid_t child) {
    int status = 0;
    if (::waitpid(child, &status, WNOHANG) != 0) return;
    ::kill(child, SIGKILL);
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
}

using Clock = std::chrono::steady_clock;

// Waits until a socket can pass bytes; a signal does not start the time again.
bool isReady(int socket, short event, Clock::time_point end) {
    pollfd waited{socket, event, 0};
    int ready = -1;
    do {
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        ready = ::poll(&waited, 1, static_cast<int>(std::clamp<std::int64_t>(left, 0, longestWait)));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

// Calls `pass` until all the bytes are transferred.
template <typename Bytes, typename Pass>
Transfer transfer(int socket, short event, Bytes bytes, std::chrono::milliseconds patience, Pass pass) {
    while (!bytes.empty()) {
        ssize_t passed = -1;
        auto const end = Clock::now() + patience;
        do {
            if (!isReady(socket, event, end)) return Transfer::silent;
            passed = pass(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        } while (passed < 0 && (errno == EINTR || errno == EAGAIN));
        if (passed <= 0) return Transfer::ended;
        bytes = bytes.subspan(static_cast<std::size_t>(passed));
    }
    return Transfer::done;
}

// The address space in use; 0 where the system does not tell.
std::uint64_t addressSpace() {
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

void limit(int resource, std::uint64_t most) {
    rlimit limits{};
    if (::getrlimit(static_cast<__rlimit_resource_t>(resource), &limits) != 0) return;
    limits.rlim_cur = std::min<rlim_t>(most, limits.rlim_max);
    ::setrlimit(static_cast<__rlimit_resource_t>(resource), &limits);
}

// Also while the program works, or does not end: the other end of the socket is closed when the parent is gone.
void endWithParent() {
    std::thread([] {
        pollfd input{STDIN_FILENO, 0, 0};
        while (::poll(&input, 1, -1) < 0 && errno == EINTR) {
        }
        ::_exit(0);
    }).detach();
}

}

struct ChildProcess::State {
    State(std::string const& program, File const& file) : State(connect(program), program, file) {}
    State(Connection connection, std::string const& program, File const& file)
        : socket(std::move(connection.own)), child(spawn(program, beyondGiven(connection.childs.get(), program).get(),
                                                 beyondGiven(static_cast<int>(file.native()), program).get())) {}
    State(State const&) = delete;
    State& operator=(State const&) = delete;
    ~State() { end(child); }

    Socket socket;
    pid_t child;
};

ChildProcess::ChildProcess(std::string const& program, File const& file)
    : state_(std::make_unique<State>(program, file)) {}

ChildProcess::~ChildProcess() = default;

Transfer ChildProcess::write(std::span<std::byte const> bytes, std::chrono::milliseconds patience) {
    return transfer(state_->socket.get(), POLLOUT, bytes, patience, ::send);
}

Transfer ChildProcess::read(std::span<std::byte> bytes, std::chrono::milliseconds patience) {
    return transfer(state_->socket.get(), POLLIN, bytes, patience, ::recv);
}

std::uint64_t ChildProcess::id() const noexcept {
    return static_cast<std::uint64_t>(state_->child);
}

void prepareAsChild(std::uint64_t memory) {
    limit(RLIMIT_CORE, 0);
    endWithParent();
    limit(RLIMIT_AS, addressSpace() + memory);
}

File inheritedFile(std::string const& number) {
    return File::adopt(std::stoi(number), "the file");
}

}
