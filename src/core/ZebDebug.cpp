#include <cubes/core/ZebDebug.h>

#include "core/DebugLog.h"
#include "host/platform/CallStack.h"
#include "host/platform/Debugger.h"
#include "host/platform/Environment.h"
#include "host/platform/LocalTime.h"
#include "host/platform/NarrowText.h"
#include "host/platform/SystemErrors.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <ctime>
#include <string_view>

namespace {

using cubes::DebugLog;
namespace platform = cubes::platform;

// What the work gives. The log never disturbs those that write it: work that fails, as for want of
// memory, is given up and gives false or an empty text.
template <class Work>
auto undisturbed(Work const& work) noexcept -> decltype(work()) {
    platform::LastErrorKept const kept;
    try {
        return work();
    } catch (...) {
        return decltype(work())();
    }
}

template <class Work>
void whenActive(Work const& work) {
    undisturbed([&work] {
        if (ZebDebug::isDebuggingActive()) work();
    });
}

template <class Character>
Character const* orEmpty(Character const* text) {
    static constexpr Character empty = 0;
    return text ? text : &empty;
}

char const* narrow(char const* text) {
    return text;
}

std::string narrow(wchar_t const* text) {
    return platform::toNarrow(text);
}

template <class Character>
void writeLine(ZebDebug::TypeOfMessage type, Character const* text) {
    whenActive([=] {
        DebugLog::instance().append(ZebDebug::now(type) + narrow(orEmpty(text)) + "\n");
        platform::echoToDebugger(orEmpty(text));
    });
}

std::string lastComponent(std::string const& path) {
    auto const backslash = path.rfind('\\');
    auto const delimiter = backslash != std::string::npos ? backslash : path.rfind('/');
    return delimiter == std::string::npos ? path : path.substr(delimiter + 1);
}

std::string known(std::string const& name) {
    return name.empty() ? "?" : name;
}

std::string hexadecimal(std::uintptr_t number) {
    std::array<char, 2 * sizeof number> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    return {digits.data(), end};
}

std::string described(std::size_t number, platform::StackFrame const& frame) {
    std::string const line = frame.line ? std::to_string(*frame.line) : "?";
    return "\t" + std::to_string(number) + ": " + known(lastComponent(frame.module)) + " in " + known(frame.function) +
           " at line " + line + " at address 0x" + hexadecimal(frame.address);
}

// One line even where the system's texts end in a line end of their own.
std::string systemText(std::uint32_t code) {
    std::string const text = platform::errorText(code).value_or("");
    return text.substr(0, text.find_last_not_of("\r\n") + 1);
}

}

bool ZebDebug::isDebuggingActive() {
    return undisturbed([] {
        auto const value = platform::environment("ZEB.DEBUG");
        return value && platform::lowerCase(*value) == "true";
    });
}

bool ZebDebug::openStream() {
    return undisturbed([] {
        DebugLog& log = DebugLog::instance();
        return isDebuggingActive() ? log.keepOpen() : log.isOpen();
    });
}

std::string ZebDebug::now(TypeOfMessage type) {
    return undisturbed([type] {
        static constexpr std::string_view letters = "LLDWE";
        auto const index = static_cast<std::size_t>(type);
        std::tm const time = platform::localTime();
        std::array<char, 64> text{};
        std::size_t const length = std::strftime(text.data(), text.size(), " [%d-%m-%Y %H:%M:%S] ", &time);
        return (index < letters.size() ? letters[index] : 'L') + std::string(text.data(), length);
    });
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
        write(mtError, ("failed with error " + std::to_string(code) + ": [" + systemText(code) + "]").c_str());
    });
}

void ZebDebug::writeTrace(char const* file, int line, char const* function, char const* text) {
    whenActive([=] {
        std::string message;
        if (file) message = lastComponent(file) + "@" + std::to_string(line) + " " + orEmpty(function);
        if (text) message += std::string(" ") + text;
        write(mtTrace, message.c_str());
    });
}

void ZebDebug::writeStack() {
    void const* const caller = CUBES_RETURN_ADDRESS();
    whenActive([caller] {
        std::string lines = "writeStack";
        std::size_t number = 0;
        for (auto const& frame : platform::callStack(caller)) lines += "\n" + described(number++, frame);
        write(mtTrace, lines.c_str());
    });
}

void ZebDebug::setDebugOutput(std::string const& name) {
    whenActive([&name] { DebugLog::instance().redirect(name); });
}

bool ZebDebug::isDebuggerPresent() {
    return undisturbed(platform::isDebuggerAttached);
}

void ZebDebug::doDebuggingBreak() {
    whenActive([] {
        if (isDebuggerPresent()) platform::breakIntoDebugger();
    });
}
