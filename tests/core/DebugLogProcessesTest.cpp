#include "core/DebugLogTest.h"
#include "support/Forked.h"

#include <csignal>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

namespace cubes::test {

namespace {

constexpr int messages = 400;

// Messages of many lengths, which tell their writer and their number.
std::string message(int writer, int number) {
    auto const length = static_cast<std::size_t>(number * 37 % 9000);
    return std::to_string(writer) + "/" + std::to_string(number) + std::string(length, static_cast<char>('a' + writer));
}

void writeAll(int writer) {
    for (int number = 0; number < messages; ++number) ZebDebug::writeDebug(message(writer, number));
}

std::multiset<std::string> linesOfAll(int writers) {
    std::multiset<std::string> lines;
    for (int writer = 0; writer < writers; ++writer)
        for (int number = 0; number < messages; ++number) lines.insert("D [time] " + message(writer, number));
    return lines;
}

std::multiset<std::string> linesOf(std::string const& log) {
    std::istringstream stream(log);
    std::multiset<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.insert(withoutTimes(line.substr(0, 24)) + line.substr(24));
    return lines;
}

// Writes when the program's own objects are destroyed, after the log was used first.
struct LastWords {
    ~LastWords() {
        if (spoken) ZebDebug::writeDebug("last words");
    }
    bool spoken = false;
};
LastWords lastWords;

}

TEST_F(DebugLogTest, holdsEveryLineOfTwoProcessesWhole) {
    EXPECT_EQ(2, inProcesses(2, writeAll));
    EXPECT_TRUE(linesOf(readFile(path())) == linesOfAll(2));
}

TEST_F(DebugLogTest, holdsEveryLineOfTwoProcessesWholeThatKeepItOpen) {
    EXPECT_EQ(2, inProcesses(2, [](int writer) {
        ZebDebug::openStream();
        writeAll(writer);
    }));
    EXPECT_TRUE(linesOf(readFile(path())) == linesOfAll(2));
}

TEST_F(DebugLogTest, holdsEveryLineOfSeveralThreadsWhole) {
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 4; ++writer) threads.emplace_back(writeAll, writer);
    ZebDebug::openStream();
    ZebDebug::setDebugOutput("");
    for (auto& thread : threads) thread.join();
    EXPECT_TRUE(linesOf(readFile(path())) == linesOfAll(4));
}

TEST_F(DebugLogTest, keepsStacksOfTwoProcessesApart) {
    EXPECT_EQ(2, inProcesses(2, [](int) {
        for (int i = 0; i < 50; ++i) ZebDebug::writeStack();
    }));
    std::istringstream stream(readFile(path()));
    int stacks = 0;
    int frame = 0;
    for (std::string line; std::getline(stream, line);) {
        bool const heading = line.ends_with("] writeStack");
        std::string const number = "\t" + std::to_string(frame) + ": ";
        ASSERT_TRUE(heading || line.starts_with(number)) << line;
        stacks += heading ? 1 : 0;
        frame = heading ? 0 : frame + 1;
    }
    EXPECT_EQ(stacks, 100);
}

TEST_F(DebugLogTest, losesNothingWhenTheProcessIsKilled) {
    for (bool const keptOpen : {false, true}) {
        EXPECT_EQ(0, inProcesses(1, [&](int) {
            if (keptOpen) ZebDebug::openStream();
            ZebDebug::writeDebug("text");
            raise(SIGKILL);
        }));
    }
    EXPECT_EQ(log(), "D [time] text\nD [time] text\n");
}

TEST_F(DebugLogTest, isThereForDestructorsThatRunAtTheEnd) {
    EXPECT_EQ(1, inProcesses(1, [](int) {
        ZebDebug::setDebugOutput("a name that is long enough to lie on the heap.log");
        ZebDebug::writeDebug("words");
        lastWords.spoken = true;
        std::exit(0);
    }));
    EXPECT_EQ(logIn(directory_.file("a name that is long enough to lie on the heap.log")),
        "D [time] words\nD [time] last words\n");
}

}
