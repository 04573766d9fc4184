#include "support/Forked.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace cubes::test {

namespace {

// Waits until the other end of the pipe is closed, then works.
[[noreturn]] void live(int const (&gate)[2], std::function<void(int)> const& work, int number) {
    close(gate[1]);
    char nothing = 0;
    while (read(gate[0], &nothing, 1) > 0) {
    }
    try {
        work(number);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "process %d: %s\n", number, error.what());
        _exit(1);
    }
}

}

int inProcesses(int count, std::function<void(int)> const& work) {
    int gate[2];
    if (pipe(gate) != 0) throw std::runtime_error("no pipe");
    std::vector<pid_t> children;
    for (int i = 0; i < count; ++i) {
        pid_t const child = fork();
        if (child == 0) live(gate, work, i);
        children.push_back(child);
    }
    close(gate[0]);
    close(gate[1]);
    int succeeded = 0;
    for (pid_t const child : children) {
        int status = 0;
        if (waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0) ++succeeded;
    }
    return succeeded;
}

}
