#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <system_error>

/// The process and its environment: system errors, variables, clock, terminal and debugger.
namespace cubes::platform {

/// The calling thread's last operating-system error: GetLastError, or errno off Windows.
std::uint32_t lastError();
void setLastError(std::uint32_t code);

/// The same as an error code.
inline std::error_code lastSystemError() {
    return {static_cast<int>(lastError()), std::system_category()};
}

/// The system's own text for an error number, unchanged (with its line end on Windows); nothing when the system does
/// not know the number.
std::optional<std::string> errorText(std::uint32_t code);

/// Restores the calling thread's last error at the end of the block.
class LastErrorKept {
public:
    LastErrorKept() : code_(lastError()) {}
    ~LastErrorKept() { setLastError(code_); }
    LastErrorKept(LastErrorKept const&) = delete;
    LastErrorKept& operator=(LastErrorKept const&) = delete;

private:
    std::uint32_t code_;
};

/// Throws std::system_error: "cannot open /data/a.skm: Permission denied".
[[noreturn]] inline void throwSystemFailure(std::string const& action, std::string const& path, int code) {
    throw std::system_error(std::error_code(code, std::system_category()), action + " " + path);
}

/// The same with the calling thread's last error.
[[noreturn]] inline void throwSystemFailure(std::string const& action, std::string const& path) {
    throwSystemFailure(action, path, static_cast<int>(lastError()));
}

/// A variable of the process's environment at the time of the call, in the narrow encoding; nothing
/// when it is unset or empty.
std::optional<std::string> environment(char const* name);

/// The user's temporary directory according to the environment, with a delimiter at its end; the system's own when that
/// is longer than 259 characters. It may not exist.
std::string temporaryDirectory();

/// The local date and time.
std::tm localTime();

std::uint64_t processId();

/// The bytes of memory that the process can use without swapping, as the system estimates them: at most what the limits
/// of its container leave. Nothing when the system does not say.
std::optional<std::uint64_t> availableMemory();

/// Makes standard output and error pass bytes unchanged, and a terminal show them in the narrow encoding. Writing to a
/// stream that is closed, or whose reader is gone, fails from now on; no file that is opened later takes its place.
void prepareStreams();
/// Whether standard error is a terminal.
bool messagesAreWatched();
/// Whether the last write failed because the other end of the pipe was closed.
bool readerWentAway();

bool isDebuggerAttached();
/// Stops the program like a breakpoint; ends it when no debugger is attached.
void breakIntoDebugger();
/// Shows the text in the debugger's window; does nothing where debuggers have none.
void writeToDebugger(char const* text);
void writeToDebugger(wchar_t const* text);

/// The number of forks between this process and the one that first called this function. An object created at a smaller
/// count belongs to a parent. Always 0 if processes cannot fork.
unsigned long forkCount() noexcept;

}
