#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace cubes::test {

/// Work for child processes of a test program, on every platform. The processes find it by its name, which is unique
/// in the program. Define it at namespace scope, so that each process has it.
class ChildTask {
public:
    /// Receives the number of the process, from 0, and the caller's argument.
    using Work = std::function<void(int number, std::string const& argument)>;

    ChildTask(std::string name, Work work);
    ChildTask(ChildTask const&) = delete;
    ChildTask& operator=(ChildTask const&) = delete;
    /// Runs the task in `count` processes at once and returns how many of them succeeded. A process that throws or has
    /// failed tests exits with an error.
    int inProcesses(int count, std::string const& argument = {}) const;

    void run(int number, std::string const& argument) const { work_(number, argument); }

private:
    std::string name_;
    Work work_;
};

/// Ends this process at once, as if it were killed.
[[noreturn]] void killThisProcess();
/// Ends this process without calling destructors.
[[noreturn]] void leaveAtOnce(bool isWell);
/// Ends this process with an error unless it ends by itself within that time: for work that may never return.
void endThisProcessAfter(std::chrono::seconds limit);

}
