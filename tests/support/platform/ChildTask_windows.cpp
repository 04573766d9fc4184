#include "support/ChildTask.h"

#include "support/Variable.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include <windows.h>

namespace cubes::test {

namespace {

constexpr char const* nameVariable = "CUBES_TEST_TASK";
constexpr char const* numberVariable = "CUBES_TEST_TASK_NUMBER";
constexpr char const* gateVariable = "CUBES_TEST_TASK_GATE";
constexpr char const* argumentVariable = "CUBES_TEST_TASK_ARGUMENT";
constexpr DWORD patience = 60'000;

struct Closer {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<HANDLE, Closer>;

std::map<std::string, ChildTask const*>& tasks() {
    static std::map<std::string, ChildTask const*> all;
    return all;
}

std::string variable(char const* name) {
    char const* const value = std::getenv(name);
    return value ? value : "";
}

/// Blocks processes until the last one has started.
class Gate {
public:
    explicit Gate(std::string const& name)
        : arrivals_(CreateSemaphoreA(nullptr, 0, 1000, (name + "-arrivals").c_str())),
          opening_(CreateEventA(nullptr, TRUE, FALSE, (name + "-opening").c_str())) {
        if (!arrivals_ || !opening_) throw std::runtime_error("no gate");
    }

    void pass() const {
        ReleaseSemaphore(arrivals_.get(), 1, nullptr);
        WaitForSingleObject(opening_.get(), patience);
    }
    void openFor(int count) const {
        for (int i = 0; i < count; ++i) WaitForSingleObject(arrivals_.get(), patience);
        SetEvent(opening_.get());
    }

private:
    Handle arrivals_;
    Handle opening_;
};

int runTask(ChildTask const& task) {
    int const number = std::stoi(variable(numberVariable));
    try {
        Gate(variable(gateVariable)).pass();
        task.run(number, variable(argumentVariable));
        return testing::Test::HasFailure() ? 1 : 0;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "process %d: %s\n", number, error.what());
        return 1;
    }
}

/// Runs before all tests of a process, and ends a process that was started for a task.
class ChildTasks : public testing::Environment {
public:
    void SetUp() override {
        std::string const name = variable(nameVariable);
        if (name.empty()) return;
        auto const wanted = tasks().find(name);
        // Its test would start this program again, endlessly.
        if (wanted == tasks().end()) std::fprintf(stderr, "no child-process task is named '%s'\n", name.c_str());
        leaveAtOnce(wanted != tasks().end() && runTask(*wanted->second) == 0);
    }
};

std::string ownPath() {
    char path[MAX_PATH];
    return {path, GetModuleFileNameA(nullptr, path, MAX_PATH)};
}

// A process that was started for a task runs no test, but its filter names one.
std::string currentTest() {
    auto const* const test = testing::UnitTest::GetInstance()->current_test_info();
    return test ? std::string(test->test_suite_name()) + "." + test->name() : testing::GTEST_FLAG(filter);
}

Handle startAgain() {
    std::string command = "\"" + ownPath() + "\" --gtest_brief=1 --gtest_filter=" + currentTest();
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
        throw std::runtime_error("cannot start " + command);
    CloseHandle(process.hThread);
    return Handle(process.hProcess);
}

bool endsWell(Handle const& process) {
    DWORD code = 1;
    bool const ended = WaitForSingleObject(process.get(), patience) == WAIT_OBJECT_0;
    return ended && GetExitCodeProcess(process.get(), &code) && code == 0;
}

}

ChildTask::ChildTask(std::string name, Work work) : name_(std::move(name)), work_(std::move(work)) {
    if (tasks().empty()) testing::AddGlobalTestEnvironment(new ChildTasks);
    if (!tasks().emplace(name_, this).second)
        throw std::logic_error("two child-process tasks are named '" + name_ + "'");
}

int ChildTask::inProcesses(int count, std::string const& argument) const {
    static int gates = 0;
    std::string const gateName = "cubes-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++gates);
    Gate const gate(gateName);
    Variable const name(nameVariable, name_);
    Variable const gateOfAll(gateVariable, gateName);
    Variable const argumentOfAll(argumentVariable, argument);
    std::vector<Handle> processes;
    for (int i = 0; i < count; ++i) {
        Variable const number(numberVariable, std::to_string(i));
        processes.push_back(startAgain());
    }
    gate.openFor(count);
    int succeeded = 0;
    for (auto const& process : processes) succeeded += endsWell(process) ? 1 : 0;
    return succeeded;
}

void killThisProcess() {
    TerminateProcess(GetCurrentProcess(), 9);
    std::abort();
}

void leaveAtOnce(bool isWell) {
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), isWell ? 0 : 1);
    std::abort();
}

void endThisProcessAfter(std::chrono::seconds limit) {
    std::thread([limit] {
        std::this_thread::sleep_for(limit);
        leaveAtOnce(false);
    }).detach();
}

}
