#include "core/DebugLogTest.h"
#include "support/Errand.h"

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

void writeAllWhileOpen(int writer) {
    ZebDebug::openStream();
    writeAll(writer);
}

void writeStacks() {
    for (int i = 0; i < 50; ++i) ZebDebug::writeStack();
}

[[noreturn]] void writeAndDie(bool keptOpen) {
    if (keptOpen) ZebDebug::openStream();
    ZebDebug::writeDebug("text");
    killThisProcess();
}

[[noreturn]] void endWithWords() {
    ZebDebug::setDebugOutput("a name that is long enough to lie on the heap.log");
    ZebDebug::writeDebug("words");
    lastWords.spoken = true;
    std::exit(0);
}

Errand const messagesOfOne("messages", [](int writer, std::string const&) { writeAll(writer); });
Errand const messagesKeptOpen("messages, kept open", [](int writer, std::string const&) { writeAllWhileOpen(writer); });
Errand const stacks("stacks", [](int, std::string const&) { writeStacks(); });
Errand const sudden("sudden end", [](int, std::string const& told) { writeAndDie(told == "open"); });
Errand const wordsAtTheEnd("words at the end", [](int, std::string const&) { endWithWords(); });

}

TEST_F(DebugLogTest, holdsEveryLineOfTwoProcessesWhole) {
    EXPECT_EQ(2, messagesOfOne.inProcesses(2));
    EXPECT_TRUE(linesOf(readText(path())) == linesOfAll(2));
}

TEST_F(DebugLogTest, holdsEveryLineOfTwoProcessesWholeThatKeepItOpen) {
    EXPECT_EQ(2, messagesKeptOpen.inProcesses(2));
    EXPECT_TRUE(linesOf(readText(path())) == linesOfAll(2));
}

TEST_F(DebugLogTest, holdsEveryLineOfSeveralThreadsWhole) {
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 4; ++writer) threads.emplace_back(writeAll, writer);
    ZebDebug::openStream();
    ZebDebug::setDebugOutput("");
    for (auto& thread : threads) thread.join();
    EXPECT_TRUE(linesOf(readText(path())) == linesOfAll(4));
}

TEST_F(DebugLogTest, keepsStacksOfTwoProcessesApart) {
    EXPECT_EQ(2, stacks.inProcesses(2));
    std::istringstream stream(readText(path()));
    int found = 0;
    int frame = 0;
    for (std::string line; std::getline(stream, line);) {
        bool const heading = line.ends_with("] writeStack");
        std::string const number = "\t" + std::to_string(frame) + ": ";
        ASSERT_TRUE(heading || line.starts_with(number)) << line;
        found += heading ? 1 : 0;
        frame = heading ? 0 : frame + 1;
    }
    EXPECT_EQ(found, 100);
}

TEST_F(DebugLogTest, losesNothingWhenTheProcessIsKilled) {
    for (char const* const state : {"closed", "open"}) EXPECT_EQ(0, sudden.inProcesses(1, state));
    EXPECT_EQ(log(), "D [time] text\nD [time] text\n");
}

TEST_F(DebugLogTest, isThereForDestructorsThatRunAtTheEnd) {
    EXPECT_EQ(1, wordsAtTheEnd.inProcesses(1));
    EXPECT_EQ(logIn(directory_.file("a name that is long enough to lie on the heap.log")),
        "D [time] words\nD [time] last words\n");
}

}
