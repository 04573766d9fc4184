#include <cubes/core/ZebDebug.h>

#include <cubes/text/TRkString.h>

#include "host/platform/CallStack.h"
#include "host/platform/File.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"
#include "host/platform/System.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>

namespace platform = cubes::platform;

namespace {

constexpr char const* defaultName = "debug.log";

/// The log of the process, closed between messages unless a caller keeps it open.
struct Log {
    std::mutex mutex;
    std::string name = defaultName;
    std::optional<platform::File> file;
};

Log& theLog() {
    // Never destroyed: destructors that run while the program ends may still write.
    static Log& log = *std::make_unique<Log>().release();
    return log;
}

// The temporary directory belongs to everybody.
platform::File opened(Log const& log) {
    return platform::File::openLog(platform::resolved(platform::temporaryDirectory(), log.name));
}

void append(std::string const& lines) {
    Log& log = theLog();
    std::lock_guard const lock(log.mutex);
    if (log.file)
        log.file->append(lines);
    else
        opened(log).append(lines);
}

// The log never affects its callers: errors are ignored, and the thread's last system error is restored.
template <class Work>
void whenActive(Work const& work) noexcept {
    platform::LastErrorKept const kept;
    try {
        if (ZebDebug::isDebuggingActive()) work();
    } catch (...) {
        return;
    }
}

template <class Character>
Character const* orEmpty(Character const* text) {
    static constexpr Character empty = 0;
    return text ? text : &empty;
}

std::string narrow(char const* text) {
    return text;
}

std::string narrow(wchar_t const* text) {
    return platform::toNarrow(text);
}

template <class Character>
void writeLine(ZebDebug::TypeOfMessage type, Character const* text) {
    whenActive([=] {
        append(ZebDebug::now(type) + narrow(orEmpty(text)) + "\n");
        if (platform::isDebuggerAttached()) platform::writeToDebugger(orEmpty(text));
    });
}

std::string lastComponent(std::string const& path) {
    auto const backslash = path.rfind('\\');
    auto const delimiter = backslash != std::string::npos ? backslash : path.rfind('/');
    return delimiter == std::string::npos ? path : path.substr(delimiter + 1);
}

std::string described(platform::StackFrame const& frame) {
    auto const known = [](std::string const& text) { return text.empty() ? "?" : text; };
    return fmt::format("{} in {} at line {} at address 0x{:x}", known(lastComponent(frame.module)),
        known(frame.function), frame.line ? std::to_string(*frame.line) : "?", frame.address);
}

}

bool ZebDebug::isDebuggingActive() {
    auto const value = platform::environment("ZEB.DEBUG");
    return value && platform::lowerCase(*value) == "true";
}

bool ZebDebug::openStream() {
    Log& log = theLog();
    std::lock_guard const lock(log.mutex);
    bool const wasOpen = log.file.has_value();
    whenActive([&log] {
        if (!log.file) log.file = opened(log);
    });
    return wasOpen;
}

std::string ZebDebug::now(TypeOfMessage type) {
    static constexpr std::string_view letters = "LLDWE";
    auto const index = static_cast<std::size_t>(type);
    std::tm const time = platform::localTime();
    std::array<char, 64> text{};
    std::size_t const length = std::strftime(text.data(), text.size(), " [%d-%m-%Y %H:%M:%S] ", &time);
    return (index < letters.size() ? letters[index] : 'L') + std::string(text.data(), length);
}

void ZebDebug::write(TypeOfMessage type, char const* text) {
    writeLine(type, text);
}

void ZebDebug::write(TypeOfMessage type, wchar_t const* text) {
    writeLine(type, text);
}

void ZebDebug::writeDebug(char const* text) {
    write(mtDebug, text);
}

void ZebDebug::writeDebug(std::string const& text) {
    write(mtDebug, text.c_str());
}

void ZebDebug::writeDebug(wchar_t const* text) {
    write(mtDebug, text);
}

void ZebDebug::writeDebug(std::wstring const& text) {
    write(mtDebug, text.c_str());
}

void ZebDebug::writeError(char const* text) {
    write(mtError, text);
}

void ZebDebug::writeError(std::string const& text) {
    write(mtError, text.c_str());
}

void ZebDebug::writeError(wchar_t const* text) {
    write(mtError, text);
}

void ZebDebug::writeError(std::wstring const& text) {
    write(mtError, text.c_str());
}

void ZebDebug::writeToDebugger(char const* text) {
    whenActive([text] { platform::writeToDebugger(orEmpty(text)); });
}

void ZebDebug::writeToDebugger(wchar_t const* text) {
    whenActive([text] { platform::writeToDebugger(orEmpty(text)); });
}

void ZebDebug::writeLastError() {
    std::uint32_t const code = platform::lastError();
    whenActive([code] {
        // On Windows the system's text ends in a line end.
        std::string const text = TRkString(platform::errorText(code).value_or("")).Trim().str();
        writeError(fmt::format("failed with error {}: [{}]", code, text));
    });
}

void ZebDebug::writeTrace(char const* file, int line, char const* function, char const* text) {
    whenActive([=] {
        std::string message;
        if (file) message = fmt::format("{}@{} {}", lastComponent(file), line, orEmpty(function));
        if (text) message += std::string(" ") + text;
        write(mtTrace, message.c_str());
    });
}

void ZebDebug::writeStack() {
    whenActive([] {
        std::string lines = "writeStack";
        for (int number = 0; auto const& frame : platform::callStack())
            lines += fmt::format("\n\t{}: {}", number++, described(frame));
        write(mtTrace, lines.c_str());
    });
}

void ZebDebug::setDebugOutput(std::string const& name) {
    whenActive([&name] {
        Log& log = theLog();
        std::lock_guard const lock(log.mutex);
        log.file.reset();
        log.name = name.empty() ? defaultName : name;
    });
}

bool ZebDebug::isDebuggerPresent() {
    return platform::isDebuggerAttached();
}

void ZebDebug::doDebuggingBreak() {
    whenActive([] {
        if (isDebuggerPresent()) platform::breakIntoDebugger();
    });
}
