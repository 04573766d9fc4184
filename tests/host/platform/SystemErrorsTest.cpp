#include "host/platform/SystemErrors.h"

#include "support/SystemWords.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdio>

using cubes::platform::errorText;
using cubes::platform::lastError;
using cubes::platform::LastErrorKept;
using cubes::platform::setLastError;

TEST(SystemErrors, haveTheSystemsOwnText) {
    auto const text = errorText(2);
    ASSERT_TRUE(text);
    EXPECT_TRUE(text->starts_with(cubes::test::noSuchFile())) << *text;
}

TEST(SystemErrors, haveNoTextForNumbersThatTheSystemDoesNotKnow) {
    EXPECT_FALSE(errorText(0x1FFFFFFF));
    EXPECT_FALSE(errorText(0xFFFFFFFE));
}

TEST(SystemErrors, tellWhatFailedLast) {
    cubes::test::TempDir const directory;
    std::FILE* const missing = std::fopen(directory.file("none").c_str(), "rb");
    std::uint32_t const error = lastError();
    EXPECT_EQ(nullptr, missing);
    EXPECT_EQ(2U, error);
}

TEST(SystemErrors, stayAsTheyWereWhileTheyAreKept) {
    setLastError(13);
    {
        LastErrorKept const kept;
        setLastError(2);
    }
    EXPECT_EQ(13U, lastError());
}
