#include "host/platform/Demangled.h"

#include <gtest/gtest.h>

using cubes::platform::demangled;
using cubes::platform::demangledWithoutUnderscore;

namespace {

struct Name {
    char const* made;
    char const* plain;
    char const* withoutUnderscore;
};

constexpr Name names[] = {
    {"_ZN8ZebDebug10writeStackEv", "ZebDebug::writeStack()", "ZebDebug::writeStack()"},
    {"ZN8ZebDebug10writeStackEv", "ZN8ZebDebug10writeStackEv", "ZebDebug::writeStack()"},
    {"Z3addii", "Z3addii", "add(int, int)"},
    {"main", "main", "main"},
    {"ZSTD_compress", "ZSTD_compress", "ZSTD_compress"},
    {"Z", "Z", "Z"},
    {"", "", ""},
};

}

TEST(Demangled, isTheNameInTheSource) {
    for (auto const& [made, plain, withoutUnderscore] : names) EXPECT_EQ(demangled(made), plain);
}

TEST(Demangled, isKnownWithoutItsUnderscore) {
    for (auto const& [made, plain, withoutUnderscore] : names)
        EXPECT_EQ(demangledWithoutUnderscore(made), withoutUnderscore);
}
