#include "support/Errand.h"

#include "support/Variable.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <exception>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <windows.h>

namespace cubes::test {

namespace {

constexpr char const* nameVariable = "CUBES_TEST_ERRAND";
constexpr char const* numberVariable = "CUBES_TEST_ERRAND_NUMBER";
constexpr char const* gateVariable = "CUBES_TEST_ERRAND_GATE";
constexpr char const* toldVariable = "CUBES_TEST_ERRAND_TOLD";
constexpr DWORD patience = 60'000;

struct Closer {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<HANDLE, Closer>;

std::map<std::string, Errand const*>& errands() {
    static std::map<std::string, Errand const*> all;
    return all;
}

std::string variable(char const* name) {
    char const* const value = std::getenv(name);
    return value ? value : "";
}

/// Where processes wait for the last one to be there.
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

int runErrand(Errand const& errand) {
    int const number = std::stoi(variable(numberVariable));
    try {
        Gate(variable(gateVariable)).pass();
        errand.run(number, variable(toldVariable));
        return testing::Test::HasFailure() ? 1 : 0;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "process %d: %s\n", number, error.what());
        return 1;
    }
}

/// Comes before all tests of a process, and is the end of one that was started for an errand.
class Errands : public testing::Environment {
public:
    void SetUp() override {
        std::string const name = variable(nameVariable);
        if (name.empty()) return;
        auto const wanted = errands().find(name);
        // Its test would start this program again, and so on without end.
        if (wanted == errands().end()) std::fprintf(stderr, "no errand is named '%s'\n", name.c_str());
        leaveAtOnce(wanted != errands().end() && runErrand(*wanted->second) == 0);
    }
};

std::string ownPath() {
    char path[MAX_PATH];
    return {path, GetModuleFileNameA(nullptr, path, MAX_PATH)};
}

// A process that was itself started for an errand runs no test, but was told of one.
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

Errand::Errand(std::string name, Work work) : name_(std::move(name)), work_(std::move(work)) {
    if (errands().empty()) testing::AddGlobalTestEnvironment(new Errands);
    if (!errands().emplace(name_, this).second) throw std::logic_error("two errands are named '" + name_ + "'");
}

int Errand::inProcesses(int count, std::string const& told) const {
    static int gates = 0;
    std::string const gateName = "cubes-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++gates);
    Gate const gate(gateName);
    Variable const name(nameVariable, name_);
    Variable const gateOfAll(gateVariable, gateName);
    Variable const toldToAll(toldVariable, told);
    std::vector<Handle> processes;
    for (int i = 0; i < count; ++i) {
        Variable const number(numberVariable, std::to_string(i));
        processes.push_back(startAgain());
    }
    gate.openFor(count);
    int good = 0;
    for (auto const& process : processes) good += endsWell(process) ? 1 : 0;
    return good;
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

}
