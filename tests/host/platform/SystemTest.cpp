#include "host/platform/System.h"

#include "host/platform/Interruption.h"
#include "support/ChildTask.h"
#include "support/SystemMessages.h"
#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <string>

using cubes::platform::environment;
using cubes::platform::errorText;
using cubes::platform::lastError;
using cubes::platform::LastErrorKept;
using cubes::platform::setLastError;

TEST(SystemErrors, haveTheSystemsOwnText) {
    auto const text = errorText(2);
    ASSERT_TRUE(text);
    EXPECT_TRUE(text->starts_with(cubes::test::noSuchFile())) << *text;
}

TEST(SystemErrors, haveNoTextForUnknownNumbers) {
    EXPECT_FALSE(errorText(0x1FFFFFFF));
    EXPECT_FALSE(errorText(0xFFFFFFFE));
}

TEST(SystemErrors, nameTheLastFailure) {
    cubes::test::TempDir const directory;
    std::FILE* const missing = std::fopen(directory.file("none").c_str(), "rb");
    std::uint32_t const error = lastError();
    EXPECT_EQ(nullptr, missing);
    EXPECT_EQ(2U, error);
}

TEST(SystemErrors, areRestoredAfterwards) {
    setLastError(13);
    {
        LastErrorKept const kept;
        setLastError(2);
    }
    EXPECT_EQ(13U, lastError());
}

TEST(Environment, isReadAtEachCall) {
    constexpr char const* name = "CUBES_TEST_ENVIRONMENT";
    cubes::test::Variable variable(name, "first");
    EXPECT_EQ(environment(name), "first");
    variable.set("second, and longer");
    EXPECT_EQ(environment(name), "second, and longer");
    variable.set("");
    EXPECT_FALSE(environment(name));
    variable.set(std::nullopt);
    EXPECT_FALSE(environment(name));
}

TEST(Environment, leavesTheLastErrorUnchanged) {
    setLastError(13);
    EXPECT_FALSE(environment("CUBES_TEST_UNSET"));
    EXPECT_EQ(13U, lastError());
}

#ifndef _WIN32

namespace {

cubes::test::ChildTask const interruptedOnce("be interrupted once", [](int, std::string const&) {
    cubes::platform::noteInterruptions();
    raise(SIGINT);
    EXPECT_EQ(cubes::platform::interruption(), SIGINT);
});

cubes::test::ChildTask const interruptedTwice("be interrupted twice", [](int, std::string const& second) {
    cubes::platform::noteInterruptions();
    raise(SIGINT);
    raise(std::stoi(second));
});

}

TEST(Interruption, isNotedOnceAndThenEndsTheProcessAtOnce) {
    EXPECT_EQ(interruptedOnce.inProcesses(1), 1);
    for (int const second : {SIGINT, SIGTERM, SIGHUP})
        EXPECT_EQ(interruptedTwice.inProcesses(1, std::to_string(second)), 0) << second;
}

#endif
