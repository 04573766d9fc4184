#include "core/DebugLogTest.h"
#include "support/Forked.h"

#include <csignal>
#include <stdexcept>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace cubes::test {

namespace {

// The signal that ends a program, or stops it for its debugger; -1 when it comes to its end.
int signalOf(int status) {
    if (WIFSTOPPED(status)) return WSTOPSIG(status);
    return WIFSIGNALED(status) ? WTERMSIG(status) : -1;
}

struct Traced {
    int stoppedBy = -1;
    int exitCode = -1;
};

// Runs `work` in a process whose debugger is this one, which lets it go on after a stop.
template <class Work>
Traced underDebugger(Work const& work) {
    pid_t const child = fork();
    if (child == 0) _exit(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? work() : 99);
    Traced result;
    int status = 0;
    waitpid(child, &status, 0);
    result.stoppedBy = signalOf(status);
    if (WIFSTOPPED(status)) {
        ptrace(PTRACE_CONT, child, nullptr, nullptr);
        waitpid(child, &status, 0);
    }
    if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
    return result;
}

}

TEST_F(DebugLogTest, seesThatNoDebuggerIsAttached) {
    EXPECT_EQ(1, inProcesses(1, [](int) {
        if (ZebDebug::isDebuggerPresent()) throw std::runtime_error("a debugger is seen");
    }));
}

TEST_F(DebugLogTest, seesAnAttachedDebugger) {
    auto const traced = underDebugger([] { return ZebDebug::isDebuggerPresent() ? 7 : 1; });
    EXPECT_EQ(traced.exitCode, 7);
    EXPECT_EQ(traced.stoppedBy, -1);
}

TEST_F(DebugLogTest, seesADebuggerWhileItIsNotActive) {
    active_.set("no");
    EXPECT_EQ(underDebugger([] { return ZebDebug::isDebuggerPresent() ? 7 : 1; }).exitCode, 7);
}

TEST_F(DebugLogTest, stopsInTheDebuggerAndGoesOn) {
    auto const traced = underDebugger([] {
        ZebDebug::doDebuggingBreak();
        return 7;
    });
    EXPECT_EQ(traced.stoppedBy, SIGTRAP);
    EXPECT_EQ(traced.exitCode, 7);
}

TEST_F(DebugLogTest, goesOnWithoutADebuggerToStopIn) {
    EXPECT_EQ(1, inProcesses(1, [](int) { ZebDebug::doDebuggingBreak(); }));
}

TEST_F(DebugLogTest, doesNotStopWhileItIsNotActive) {
    active_.set("no");
    auto const traced = underDebugger([] {
        ZebDebug::doDebuggingBreak();
        return 7;
    });
    EXPECT_EQ(traced.stoppedBy, -1);
    EXPECT_EQ(traced.exitCode, 7);
}

TEST_F(DebugLogTest, writesWhileADebuggerIsAttached) {
    EXPECT_EQ(underDebugger([] {
        ZebDebug::writeDebug("text");
        ZebDebug::writeToDebugger("text");
        return 7;
    }).exitCode,
        7);
    EXPECT_EQ(log(), "D [time] text\n");
}

}
