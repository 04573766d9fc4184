#include "core/DebugLogObstacles.h"
#include "host/platform/SystemErrors.h"

#include <functional>
#include <string>

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

}

std::string disturbing() {
    constexpr std::uint32_t before = 33;
    std::string names;
    for (auto const& [name, call] : operations) {
        platform::setLastError(before);
        try {
            call();
        } catch (...) {
            names += std::string(name) + " throws\n";
        }
        if (platform::lastError() != before) names += std::string(name) + "\n";
    }
    return names;
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

}
