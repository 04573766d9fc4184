#include "support/platform/Shell.h"

#include "support/TempDir.h"

#include <chrono>
#include <stdexcept>
#include <string_view>
#include <thread>

#include <windows.h>

namespace cubes::test {

namespace {

constexpr auto patience = std::chrono::minutes(2);

// "Z:\tmp\a" is "/tmp/a" for the system that Wine runs on.
std::string withPathsOfTheSystemBelow(std::string line) {
    for (std::size_t at = line.find("Z:"); at != std::string::npos; at = line.find("Z:", at)) {
        if (at + 2 < line.size() && line[at + 2] != '\\' && line[at + 2] != '/') {
            at += 2;
            continue;
        }
        line.erase(at, 2);
        for (; at < line.size() && std::string_view(" '\"\n:;,|<>()").find(line[at]) == std::string_view::npos; ++at)
            if (line[at] == '\\') line[at] = '/';
    }
    return line;
}

void start(std::string command) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
        throw std::runtime_error("no POSIX shell: these tests run under Wine");
    if (process.hProcess) CloseHandle(process.hProcess);
    if (process.hThread) CloseHandle(process.hThread);
}

// What Wine starts of the system below cannot be waited for: it tells of its end by a file.
int statusIn(std::string const& path) {
    auto const end = std::chrono::steady_clock::now() + patience;
    while (!std::filesystem::exists(path)) {
        if (std::chrono::steady_clock::now() > end) throw std::runtime_error("the shell does not end");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return std::stoi(readFile(path));
}

}

int shell(std::string const& line) {
    TempDir const directory;
    auto const script = directory.file("script");
    writeFile(script,
        withPathsOfTheSystemBelow("(" + line + "\n)\necho $? >'" + directory.file("status.new") + "'\n" + "mv '" +
                                  directory.file("status.new") + "' '" + directory.file("status") + "'\n"));
    start("\"Z:\\bin\\sh\" " + withPathsOfTheSystemBelow("\"" + script + "\""));
    return statusIn(directory.file("status"));
}

}
