#include "host/platform/Demangled.h"

#include <gtest/gtest.h>

using cubes::platform::demangled;

TEST(Demangled, isTheNameInTheSource) {
    EXPECT_EQ(demangled("_ZN8ZebDebug10writeStackEv"), "ZebDebug::writeStack()");
    for (char const* const name : {"main", "ZSTD_compress", "Z3addii", ""}) EXPECT_EQ(demangled(name), name);
}
