// The debug log of a process that is traced by a debugger: this test program.

#include <cubes/core/ZebDebug.h>

#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace cubes::test {
namespace {

// Runs `work` in a traced process, which continues after each stop, and returns its exit code; 99 when it cannot be
// traced. `stops` counts the breakpoints.
template <class Work>
int underDebugger(Work const& work, int& stops) {
    pid_t const child = fork();
    if (child == 0) _exit(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? work() : 99);
    int status = 0;
    for (stops = 0; waitpid(child, &status, 0) == child && WIFSTOPPED(status); ++stops) {
        EXPECT_EQ(WSTOPSIG(status), SIGTRAP);
        ptrace(PTRACE_CONT, child, nullptr, nullptr);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class DebuggerTest : public testing::Test {
protected:
    ~DebuggerTest() override {
        active_.set("true");
        ZebDebug::setDebugOutput("");
    }
    TempDir directory_;
    Variable active_{"ZEB.DEBUG", "true"};
    int stops_ = 0;
};

int breakOnce() {
    ZebDebug::doDebuggingBreak();
    return 7;
}

}

TEST_F(DebuggerTest, isDetectedWhenItIsAttached) {
    EXPECT_FALSE(ZebDebug::isDebuggerPresent());
    EXPECT_EQ(underDebugger([] { return ZebDebug::isDebuggerPresent() ? 7 : 1; }, stops_), 7);
    EXPECT_EQ(stops_, 0);
}

TEST_F(DebuggerTest, stopsTheProcessAtABreakpoint) {
    EXPECT_EQ(underDebugger(breakOnce, stops_), 7);
    EXPECT_EQ(stops_, 1);
    EXPECT_EQ(breakOnce(), 7) << "without a debugger the process goes on";
}

TEST_F(DebuggerTest, doesNotStopTheProcessWhileTheLogIsNotActive) {
    active_.set("no");
    EXPECT_EQ(underDebugger(breakOnce, stops_), 7);
    EXPECT_EQ(stops_, 0);
}

TEST_F(DebuggerTest, doesNotPreventWritingToTheLog) {
    ZebDebug::setDebugOutput(directory_.file("a.log"));
    auto const write = [] {
        ZebDebug::writeDebug("text");
        ZebDebug::writeToDebugger("to the debugger only");
        return 7;
    };
    EXPECT_EQ(underDebugger(write, stops_), 7);
    std::string const log = readText(directory_.file("a.log"));
    EXPECT_TRUE(log.ends_with("] text\n")) << log;
}

}
