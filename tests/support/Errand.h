#pragma once

#include <functional>
#include <string>

namespace cubes::test {

/// Work for other processes of this program, which know it by its name: no other of the program has it. Made at
/// namespace scope, so that it is there in each of them.
class Errand {
public:
    /// Told the number of the process from 0 and what the caller has to tell.
    using Work = std::function<void(int number, std::string const& told)>;

    Errand(std::string name, Work work);
    Errand(Errand const&) = delete;
    Errand& operator=(Errand const&) = delete;
    /// Runs it in that many processes at once, and gives how many of them ended well: a process that
    /// throws or has failed tests did not.
    int inProcesses(int count, std::string const& told = {}) const;

    void run(int number, std::string const& told) const { work_(number, told); }

private:
    std::string name_;
    Work work_;
};

/// Ends this process at once, as from outside.
[[noreturn]] void killThisProcess();
/// Ends it without destroying anything.
[[noreturn]] void leaveAtOnce(bool isWell);

}
