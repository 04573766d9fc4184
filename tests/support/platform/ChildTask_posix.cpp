#include "support/ChildTask.h"

#include "support/Forked.h"

#include <csignal>
#include <cstdlib>
#include <utility>

#include <unistd.h>

namespace cubes::test {

ChildTask::ChildTask(std::string name, Work work) : name_(std::move(name)), work_(std::move(work)) {}

// A forked process already has the task.
int ChildTask::inProcesses(int count, std::string const& argument) const {
    return test::inProcesses(count, [&](int number) { run(number, argument); });
}

void killThisProcess() {
    raise(SIGKILL);
    std::abort();
}

void leaveAtOnce(bool isWell) {
    _exit(isWell ? 0 : 1);
}

void endThisProcessAfter(std::chrono::seconds limit) {
    alarm(static_cast<unsigned>(limit.count()));
}

}
