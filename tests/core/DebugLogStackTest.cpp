#include "core/DebugLogTest.h"

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

}
