#include "host/platform/CallStack.h"

#include <gtest/gtest.h>

#include <vector>

using cubes::platform::callStack;
using cubes::platform::StackFrame;

namespace {

__attribute__((noinline)) std::vector<StackFrame> stackFromHere() {
    return callStack(CUBES_RETURN_ADDRESS());
}

__attribute__((noinline)) std::vector<StackFrame> recursive(int depth) {
    auto frames = depth > 0 ? recursive(depth - 1) : stackFromHere();
    frames.push_back({});
    return frames;
}

}

TEST(CallStack, beginsWithTheCallerWhoseAddressIsGiven) {
    auto const whole = callStack(nullptr);
    auto const frames = stackFromHere();
    ASSERT_FALSE(frames.empty());
    EXPECT_LT(frames.size(), whole.size());
    EXPECT_EQ(frames[1].address, whole[whole.size() - frames.size() + 1].address);
}

TEST(CallStack, hasAFrameForEachCall) {
    EXPECT_EQ(recursive(30).size() - 31, recursive(20).size() - 21 + 10);
}

TEST(CallStack, ofADeepRecursionIsCut) {
    EXPECT_LE(recursive(5000).size() - 5001, 1024U);
    EXPECT_GE(recursive(5000).size() - 5001, 1000U);
}
