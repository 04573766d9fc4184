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

// A frame has four parts behind its number, each headed by its own text; none is empty.
bool isFrame(std::string const& line, std::string const& number) {
    if (!line.starts_with(number)) return false;
    std::size_t begin = number.size();
    for (std::string const heading : {" in ", " at line ", " at address 0x"}) {
        std::size_t const end = line.find(heading, begin);
        if (end == std::string::npos || end == begin) return false;
        begin = end + heading.size();
    }
    return begin < line.size() && line.find_first_not_of("0123456789abcdef", begin) == std::string::npos;
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
    for (std::size_t i = 1; i < lines.size(); ++i)
        EXPECT_TRUE(isFrame(lines[i], "\t" + std::to_string(i - 1) + ": ")) << lines[i];
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
    EXPECT_TRUE(lines[1].starts_with("\t0: test_core in ") || lines[1].starts_with("\t0: test_core.exe in "))
        << lines[1];
}

}
