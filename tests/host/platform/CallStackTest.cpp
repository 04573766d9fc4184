#include "host/platform/CallStack.h"

#include <gtest/gtest.h>

#include <vector>

using cubes::platform::callStack;
using cubes::platform::className;
using cubes::platform::demangled;

namespace {

__attribute__((noinline)) std::size_t framesAtDepth(int depth) {
    // Read after the call, so that the call is not the function's last instruction.
    std::size_t const volatile frames = depth > 0 ? framesAtDepth(depth - 1) : callStack().size();
    return frames;
}

}

struct PlainlyNamed {};

TEST(CallStack, hasAFrameForEachCall) {
    EXPECT_EQ(framesAtDepth(30), framesAtDepth(20) + 10);
}

TEST(CallStack, holdsTheInnermost1024Calls) {
    EXPECT_LE(framesAtDepth(5000), 1024U);
    EXPECT_GE(framesAtDepth(5000), 1000U);
}

TEST(Demangled, isTheNameInTheSource) {
    EXPECT_EQ(demangled("_ZN8ZebDebug10writeStackEv"), "ZebDebug::writeStack()");
    for (char const* const name : {"main", "ZSTD_compress", "Z3addii", ""}) EXPECT_EQ(demangled(name), name);
}

TEST(ClassNames, areUnmangled) {
    EXPECT_STREQ("PlainlyNamed", className(typeid(PlainlyNamed)));
    EXPECT_STREQ("int", className(typeid(int)));
}

TEST(ClassNames, areTheSameTextAtEachCall) {
    char const* const first = className(typeid(PlainlyNamed));
    EXPECT_STRNE(first, className(typeid(int)));
    EXPECT_EQ(first, className(typeid(PlainlyNamed)));
}
