// Windows cannot divide a process. The test program is started again, with its task in the environment,
// and does that in place of tests.

#include "support/OwnProcesses.h"

#include "support/Variable.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <vector>

#include <windows.h>

namespace cubes::test {

namespace {

constexpr DWORD patience = 60'000;
constexpr char const* workName = "CUBES_TEST_WORK";
constexpr char const* textName = "CUBES_TEST_WORK_TEXT";
constexpr char const* numberName = "CUBES_TEST_WORK_NUMBER";
constexpr char const* readyName = "CUBES_TEST_WORK_READY";
constexpr char const* gateName = "CUBES_TEST_WORK_GATE";

class Owned {
public:
    explicit Owned(HANDLE handle) : handle_(handle) {
        if (!handle) throw std::runtime_error("the system gives no handle");
    }
    ~Owned() { CloseHandle(handle_); }
    Owned(Owned const&) = delete;
    Owned& operator=(Owned const&) = delete;

    HANDLE get() const { return handle_; }
    std::string text() const { return std::to_string(reinterpret_cast<std::uintptr_t>(handle_)); }

private:
    HANDLE handle_;
};

// The program lies elsewhere in the memory of another process.
std::uintptr_t start() {
    return reinterpret_cast<std::uintptr_t>(GetModuleHandleA(nullptr));
}

std::uintptr_t numberIn(char const* variable) {
    return std::stoull(std::getenv(variable));
}

HANDLE handleIn(char const* variable) {
    return reinterpret_cast<HANDLE>(numberIn(variable));
}

[[noreturn]] void live(OwnWork work, std::string const& text, int number) {
    ReleaseSemaphore(handleIn(readyName), 1, nullptr);
    WaitForSingleObject(handleIn(gateName), patience);
    try {
        work(text, number);
        _exit(0);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "process %d: %s\n", number, error.what());
        _exit(1);
    }
}

class TaskOfThisProcess : public testing::Environment {
public:
    void SetUp() override {
        if (!std::getenv(workName)) return;
        auto const work = reinterpret_cast<OwnWork>(start() + numberIn(workName));
        char const* const text = std::getenv(textName);
        live(work, text ? text : "", static_cast<int>(numberIn(numberName)));
    }
};

[[maybe_unused]] auto const* const task = testing::AddGlobalTestEnvironment(new TaskOfThisProcess);

HANDLE startedAgain() {
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    // What the test framework says of no test is not asked for.
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(program, nullptr, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
        throw std::runtime_error("the test program cannot be started again");
    CloseHandle(process.hThread);
    return process.hProcess;
}

bool endsWell(HANDLE process) {
    DWORD code = 1;
    return WaitForSingleObject(process, patience) == WAIT_OBJECT_0 && GetExitCodeProcess(process, &code) && code == 0;
}

}

int inOwnProcesses(int count, OwnWork work, std::string const& text) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    Owned const ready(CreateSemaphoreA(&inherited, 0, count, nullptr));
    Owned const gate(CreateEventA(&inherited, TRUE, FALSE, nullptr));
    Variable const itsWork(workName, std::to_string(reinterpret_cast<std::uintptr_t>(work) - start()));
    Variable const itsText(textName, text);
    Variable const itsReady(readyName, ready.text());
    Variable const itsGate(gateName, gate.text());
    std::vector<std::unique_ptr<Owned>> processes;
    for (int number = 0; number < count; ++number) {
        Variable const itsNumber(numberName, std::to_string(number));
        processes.push_back(std::make_unique<Owned>(startedAgain()));
    }
    for (int number = 0; number < count; ++number) WaitForSingleObject(ready.get(), patience);
    SetEvent(gate.get());
    int good = 0;
    for (auto const& process : processes) good += endsWell(process->get()) ? 1 : 0;
    return good;
}

}
