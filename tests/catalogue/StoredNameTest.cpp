#include "catalogue/StoredName.h"

#include <gtest/gtest.h>

#include <string>

#include "host/platform/Paths.h"

namespace {

using cubes::catalogue::storedPath;

TEST(StoredName, isUsedInsideItsDirectory) {
    for (char const* const name : {"1-1-1-1-1.odm", "-8-1-1-1-1.frs", "0101010101.odm", "..odm", "a..b", ".hidden",
             "b lank", "\xC3\xA4.odm", "d/1.FDB", "./a", "d//a", "d/", "a/."})
        EXPECT_EQ(storedPath("/data/m/", name), "/data/m/" + cubes::platform::withNativeDelimiters(name)) << name;
}

TEST(StoredName, isNormalisedWhenItGoesUpAndDownAgain) {
    std::string const native(1, cubes::platform::pathDelimiter());
    EXPECT_EQ(storedPath("/data/m/", "a/../b"), "/data/m/b");
    EXPECT_EQ(storedPath("/data/m/", "a\\b\\..\\c\\.\\d"), "/data/m/a" + native + "c" + native + "d");
}

TEST(StoredName, isRefusedWhenItIsEmptyAbsoluteOrLeadsOut) {
    for (char const* const name : {"", ".", "./", "..", "../x.odm", "..\\x.odm", "a/../../x", "a\\..\\..\\x", "a/..",
             "a/../.", "/etc/passwd", "\\x", "\\\\server\\x", "C:\\x.odm", "C:x.odm", "c:/x"})
        EXPECT_EQ(storedPath("/data/m/", name), "") << name;
    EXPECT_EQ(storedPath("/data/m/", std::string("a\0b", 3)), "");
}

TEST(StoredName, isAppendedToTheDirectoryWithNativeDelimiters) {
    std::string const native(1, cubes::platform::pathDelimiter());
    EXPECT_EQ(storedPath("/data/m/", "RouteStorage_Routes\\1.FDB"), "/data/m/RouteStorage_Routes" + native + "1.FDB");
}

}
