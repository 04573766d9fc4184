#include "core/DebugLogTest.h"

#include "host/platform/CallStack.h"

#include <sstream>
#include <vector>

namespace cubes::test {

namespace {

std::vector<std::string> linesOf(std::string const& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

__attribute__((noinline)) std::vector<platform::StackFrame> stackFromHere() {
    return platform::callStack(CUBES_RETURN_ADDRESS());
}

__attribute__((noinline)) std::vector<platform::StackFrame> recursive(int depth) {
    auto frames = depth > 0 ? recursive(depth - 1) : stackFromHere();
    frames.push_back({});
    return frames;
}

}

TEST_F(DebugLogTest, writesTheStackUnderItsHeading) {
    ZebDebug::writeStack();
    auto const lines = linesOf(log());
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[0], "L [time] writeStack");
}

TEST_F(DebugLogTest, numbersTheFramesAndTellsWhatItKnowsOfThem) {
    ZebDebug::writeStack();
    auto const lines = linesOf(log());
    for (std::size_t i = 1; i < lines.size(); ++i) {
        std::regex const frame(
            "\t" + std::to_string(i - 1) + ": [^/\\\\]+ in .+ at line (\\?|[0-9]+) at address 0x[0-9a-f]+");
        EXPECT_TRUE(std::regex_match(lines[i], frame)) << lines[i];
    }
}

TEST_F(DebugLogTest, writesAQuestionMarkForWhatItDoesNotKnow) {
    ZebDebug::writeStack();
    // A test program exports no names, and no platform service tells source lines here.
    auto const lines = linesOf(log());
    ASSERT_GE(lines.size(), 2U);
    EXPECT_NE(lines[1].find(" in ? at line ? at address 0x"), std::string::npos) << lines[1];
}

TEST_F(DebugLogTest, namesTheProgramAsTheModuleOfTheCaller) {
    ZebDebug::writeStack();
    auto const lines = linesOf(log());
    ASSERT_GE(lines.size(), 2U);
    EXPECT_TRUE(lines[1].starts_with("\t0: test_core in ")) << lines[1];
}

TEST(CallStack, beginsWithTheCallerWhoseAddressIsGiven) {
    auto const whole = platform::callStack(nullptr);
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

}
