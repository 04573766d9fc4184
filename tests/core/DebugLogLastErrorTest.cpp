#include "core/DebugLogTest.h"
#include "support/Forked.h"

#include <cerrno>
#include <functional>
#include <stdexcept>
#include <string>

#include <sys/resource.h>

namespace cubes::test {

namespace {

struct Operation {
    char const* name;
    std::function<void()> call;
};

Operation const operations[] = {
    {"isDebuggingActive", [] { ZebDebug::isDebuggingActive(); }},
    {"now", [] { ZebDebug::now(ZebDebug::mtError); }},
    {"write", [] { ZebDebug::write(ZebDebug::mtWarning, "text"); }},
    {"write, wide", [] { ZebDebug::write(ZebDebug::mtWarning, L"text"); }},
    {"writeDebug", [] { ZebDebug::writeDebug("text"); }},
    {"writeDebug, string", [] { ZebDebug::writeDebug(std::string("text")); }},
    {"writeDebug, wide", [] { ZebDebug::writeDebug(L"text"); }},
    {"writeDebug, wide string", [] { ZebDebug::writeDebug(std::wstring(L"text")); }},
    {"writeError", [] { ZebDebug::writeError("text"); }},
    {"writeError, string", [] { ZebDebug::writeError(std::string("text")); }},
    {"writeError, wide", [] { ZebDebug::writeError(L"text"); }},
    {"writeError, wide string", [] { ZebDebug::writeError(std::wstring(L"text")); }},
    {"writeToDebugger", [] { ZebDebug::writeToDebugger("text"); }},
    {"writeToDebugger, wide", [] { ZebDebug::writeToDebugger(L"text"); }},
    {"writeLastError", [] { ZebDebug::writeLastError(); }},
    {"writeTrace", [] { ZebDebug::writeTrace("a.cpp", 1, "f", "text"); }},
    {"writeStack", [] { ZebDebug::writeStack(); }},
    {"isDebuggerPresent", [] { ZebDebug::isDebuggerPresent(); }},
    {"doDebuggingBreak", [] { ZebDebug::doDebuggingBreak(); }},
    {"openStream", [] { ZebDebug::openStream(); }},
    {"openStream again", [] { ZebDebug::openStream(); }},
    {"setDebugOutput", [] { ZebDebug::setDebugOutput("other.log"); }},
};

// The names of the operations that change the last system error or throw.
std::string disturbing() {
    std::string names;
    for (auto const& [name, call] : operations) {
        errno = EDOM;
        try {
            call();
        } catch (...) {
            names += std::string(name) + " throws\n";
        }
        if (errno != EDOM) names += std::string(name) + "\n";
    }
    return names;
}

void useUpAllFiles() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) throw std::runtime_error("the limit is not told");
    limit.rlim_cur = 0;
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0) throw std::runtime_error("the limit is not set");
}

}

TEST_F(DebugLogTest, leavesTheLastSystemErrorAsItWas) {
    EXPECT_EQ(disturbing(), "");
}

TEST_F(DebugLogTest, leavesTheLastSystemErrorAsItWasWhenItIsNotActive) {
    active_.set("no");
    EXPECT_EQ(disturbing(), "");
}

TEST_F(DebugLogTest, leavesTheLastSystemErrorAsItWasWhenItCannotBeOpened) {
    temporary_.set(directory_.file("none"));
    EXPECT_EQ(disturbing(), "");
}

// In a process of its own: a test needs files.
TEST_F(DebugLogTest, leavesTheLastSystemErrorAsItWasWhenNoFileCanBeOpened) {
    EXPECT_EQ(1, inProcesses(1, [](int) {
        // Once with files: the sanitizers look at each kind of object through a pipe when it first comes.
        disturbing();
        useUpAllFiles();
        std::string const names = disturbing();
        if (!names.empty()) throw std::runtime_error(names);
    }));
}

}
