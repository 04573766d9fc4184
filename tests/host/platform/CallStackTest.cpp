#include "host/platform/CallStack.h"

#include <gtest/gtest.h>

#include <vector>

using cubes::platform::callStack;

namespace {

__attribute__((noinline)) std::size_t framesAtDepth(int depth) {
    // Read after the call, so that it is not the function's last step.
    std::size_t const volatile frames = depth > 0 ? framesAtDepth(depth - 1) : callStack().size();
    return frames;
}

}

TEST(CallStack, hasAFrameForEachCall) {
    EXPECT_EQ(framesAtDepth(30), framesAtDepth(20) + 10);
}

TEST(CallStack, holdsTheInnermost1024Calls) {
    EXPECT_LE(framesAtDepth(5000), 1024U);
    EXPECT_GE(framesAtDepth(5000), 1000U);
}
