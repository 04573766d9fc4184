#include "catalogue/StoredName.h"

#include <gtest/gtest.h>

#include <string>

#include "host/platform/Paths.h"

namespace {

TEST(StoredName, isUsableInsideItsDirectory) {
    for (char const* const name : {"1-1-1-1-1.odm", "-8-1-1-1-1.frs", "0101010101.odm", "RouteStorage_Routes\\1.FDB",
             "RouteStorage_Routes/1.FDB", "..odm", "a..b", ".hidden", "b lank", "\xC3\xA4.odm"})
        EXPECT_TRUE(cubes::isUsableStoredName(name)) << name;
}

TEST(StoredName, isRefusedWhenItIsEmptyAbsoluteOrClimbsOut) {
    for (char const* const name : {"", ".", "..", "../x.odm", "..\\x.odm", "a/../../x", "a\\..\\..\\x", "a/..", "a/.",
             "/etc/passwd", "\\x", "\\\\server\\x", "C:\\x.odm", "C:x.odm", "c:/x", "a//b", "a/"})
        EXPECT_FALSE(cubes::isUsableStoredName(name)) << name;
    EXPECT_FALSE(cubes::isUsableStoredName(std::string("a\0b", 3)));
}

TEST(StoredName, isAppendedToTheDirectoryWithNativeDelimiters) {
    std::string const native(1, cubes::platform::pathDelimiter());
    EXPECT_EQ(cubes::storedPath("/data/m/", "1-1-1-1-1.odm"), "/data/m/1-1-1-1-1.odm");
    EXPECT_EQ(
        cubes::storedPath("/data/m/", "RouteStorage_Routes\\1.FDB"), "/data/m/RouteStorage_Routes" + native + "1.FDB");
    EXPECT_EQ(cubes::storedPath("/data/m/", "../x"), "");
}

}
