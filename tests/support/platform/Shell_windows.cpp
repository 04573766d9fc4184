#include "support/platform/Shell.h"

#include "support/TempDir.h"

#include <chrono>
#include <stdexcept>
#include <string_view>
#include <thread>

#include <windows.h>

namespace cubes::test {

namespace {

constexpr auto longestLine = std::chrono::minutes(2);

void start(std::string command) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
        throw std::runtime_error("no POSIX shell: these tests run under Wine");
    if (process.hProcess) CloseHandle(process.hProcess);
    if (process.hThread) CloseHandle(process.hThread);
}

// A Linux process that Wine starts cannot be waited for: it creates a file when it ends.
int statusIn(std::string const& path) {
    auto const end = std::chrono::steady_clock::now() + longestLine;
    while (!std::filesystem::exists(path)) {
        if (std::chrono::steady_clock::now() > end) throw std::runtime_error("the shell does not end");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return std::stoi(readFile(path));
}

}

// "Z:\tmp\a" is "/tmp/a" on the Linux system under Wine; quoted in JSON it is "Z:\\tmp\\a".
std::string withPathsOfTheShell(std::string text) {
    for (std::size_t at = text.find("Z:"); at != std::string::npos; at = text.find("Z:", at)) {
        if (at + 2 < text.size() && text[at + 2] != '\\' && text[at + 2] != '/') {
            at += 2;
            continue;
        }
        text.erase(at, 2);
        for (; at < text.size() && std::string_view("'\"\n:;,|<>()").find(text[at]) == std::string_view::npos; ++at) {
            if (text[at] != '\\') continue;
            text[at] = '/';
            if (at + 1 < text.size() && text[at + 1] == '\\') text.erase(at + 1, 1);
        }
    }
    return text;
}

int shell(std::string const& line) {
    TempDir const directory;
    auto const script = directory.file("script");
    writeFile(
        script, withPathsOfTheShell("(" + line + "\n)\necho $? >'" + directory.file("status.new") + "'\n" + "mv '" +
                                    directory.file("status.new") + "' '" + directory.file("status") + "'\n"));
    start("\"Z:\\bin\\sh\" " + withPathsOfTheShell("\"" + script + "\""));
    return statusIn(directory.file("status"));
}

}
