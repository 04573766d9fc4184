#include <cubes/core/ZebDebug.h>

#include "host/platform/File.h"
#include "host/platform/NarrowText.h"
#include "host/platform/System.h"
#include "support/ChildTask.h"
#include "support/OpenFiles.h"
#include "support/SystemMessages.h"
#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace cubes::test {

namespace fs = std::filesystem;

namespace {

using Type = ZebDebug::TypeOfMessage;

constexpr char const* timePattern = "\\[[0-9]{2}-[0-9]{2}-[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}\\]";

/// The text with "[time]" for each time in the log's format.
std::string withoutTimes(std::string const& text) {
    return std::regex_replace(text, std::regex(timePattern), "[time]");
}

/// The log without its times; "(none)" when there is no such file.
std::string logIn(std::string const& path) {
    return fs::exists(path) ? withoutTimes(readText(path)) : "(none)";
}

std::vector<std::string> linesOf(std::string const& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string formatted(char const* format, std::tm const& time) {
    char text[64];
    return {text, std::strftime(text, sizeof text, format, &time)};
}

// A directory whose path, with a trailing delimiter, has that many characters.
std::string directoryOfLength(std::string directory, std::size_t length) {
    while (directory.size() + 1 < length) {
        std::size_t const missing = length - 1 - directory.size();
        directory += "/" + std::string(missing > 150 ? 100 : missing - 1, 'd');
    }
    fs::create_directories(directory);
    return directory;
}

struct Operation {
    char const* name;
    std::function<void()> call;
};

// Each operation that writes or changes the output.
Operation const operations[] = {
    {"openStream", [] { ZebDebug::openStream(); }},
    {"write", [] { ZebDebug::write(ZebDebug::mtWarning, "text"); }},
    {"write, wide", [] { ZebDebug::write(ZebDebug::mtWarning, L"text"); }},
    {"writeDebug", [] { ZebDebug::writeDebug("text"); }},
    {"writeError", [] { ZebDebug::writeError("text"); }},
    {"writeToDebugger", [] { ZebDebug::writeToDebugger("text"); }},
    {"writeToDebugger, wide", [] { ZebDebug::writeToDebugger(L"text"); }},
    {"writeLastError", [] { ZebDebug::writeLastError(); }},
    {"writeTrace", [] { ZebDebug::writeTrace("a.cpp", 1, "f", "text"); }},
    {"writeStack", [] { ZebDebug::writeStack(); }},
    {"setDebugOutput", [] { ZebDebug::setDebugOutput("other.log"); }},
    {"doDebuggingBreak", [] { ZebDebug::doDebuggingBreak(); }},
};

void callEveryOperation() {
    for (Operation const& operation : operations) EXPECT_NO_THROW(operation.call()) << operation.name;
}

/// An active log in a temporary directory of its own.
class ZebDebugTest : public testing::Test {
protected:
    ~ZebDebugTest() override {
        active_.set("true");
        ZebDebug::setDebugOutput("");
    }

    std::string path() const { return directory_.file("debug.log"); }
    std::string log() const { return logIn(path()); }

    // Constructed before the variable that would select another directory.
    TempDir directory_;
    Variable active_{"ZEB.DEBUG", "true"};
    Variable temporary_{Variable::temporaryDirectory, directory_.str()};
};

}

TEST_F(ZebDebugTest, isNotWrittenThroughALink) {
    std::string const victim = directory_.file("victim");
    writeFile(victim, "precious");
    struct {
        char const* kind;
        std::function<void(std::error_code&)> plant;
    } const links[] = {
        {"symbolic", [&](auto& error) { fs::create_symlink(victim, path(), error); }},
        {"dangling", [&](auto& error) { fs::create_symlink(directory_.file("none"), path(), error); }},
        {"hard", [&](auto& error) { fs::create_hard_link(victim, path(), error); }},
    };
    for (auto const& [kind, plant] : links) {
        std::error_code noLinks;
        plant(noLinks);
        if (noLinks) GTEST_SKIP() << "SKIPPED: no links here";
        ZebDebug::writeError("text");
        ZebDebug::openStream();
        ZebDebug::writeError("text");
        EXPECT_EQ(readFile(victim), "precious") << kind;
        EXPECT_FALSE(fs::exists(directory_.file("none"))) << kind;
        fs::remove(path());
    }
    ZebDebug::writeError("text");
    EXPECT_EQ(log(), "E [time] text\n");
}

TEST_F(ZebDebugTest, isActiveForTrueInAnyLetterCase) {
    for (char const* const value : {"true", "TRUE", "True", "tRuE"}) {
        active_.set(value);
        EXPECT_TRUE(ZebDebug::isDebuggingActive()) << value;
    }
}

TEST_F(ZebDebugTest, isNotActiveForAnyOtherValue) {
    for (char const* const value : {"", "1", "yes", "false", "true ", " true", "tru", "t\xC5\xAEre"}) {
        active_.set(value);
        EXPECT_FALSE(ZebDebug::isDebuggingActive()) << value;
    }
    active_.set(std::nullopt);
    EXPECT_FALSE(ZebDebug::isDebuggingActive());
}

TEST_F(ZebDebugTest, doesNothingWhileItIsNotActive) {
    for (auto const& value : {std::optional<std::string>(), std::optional<std::string>("1")}) {
        active_.set(value);
        callEveryOperation();
        EXPECT_EQ(listing(directory_.str()), "");
    }
    active_.set("true");
    ZebDebug::writeDebug("text");
    EXPECT_EQ(listing(directory_.str()), "debug.log\n") << "the output was not changed either";
}

TEST_F(ZebDebugTest, readsItsVariableAtEveryCall) {
    ZebDebug::writeDebug("one");
    active_.set("no");
    ZebDebug::writeDebug("two");
    active_.set("True");
    ZebDebug::writeDebug("three");
    EXPECT_EQ(log(), "D [time] one\nD [time] three\n");
}

struct Writer {
    char const* name;
    std::function<void()> write;
    char const* line;
};

void PrintTo(Writer const& writer, std::ostream* out) {
    *out << writer.name;
}

class ZebDebugWriter : public ZebDebugTest, public testing::WithParamInterface<Writer> {};

TEST_P(ZebDebugWriter, writesOneLine) {
    GetParam().write();
    EXPECT_EQ(log(), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(all, ZebDebugWriter,
    testing::Values( //
        Writer{"aWarning", [] { ZebDebug::write(ZebDebug::mtWarning, "text"); }, "W [time] text\n"},
        Writer{"aWideWarning", [] { ZebDebug::write(ZebDebug::mtWarning, L"text"); }, "W [time] text\n"},
        Writer{"anUnknownType", [] { ZebDebug::write(static_cast<Type>(7), "text"); }, "L [time] text\n"},
        Writer{"debugChars", [] { ZebDebug::writeDebug("text"); }, "D [time] text\n"},
        Writer{"debugString", [] { ZebDebug::writeDebug(std::string("text")); }, "D [time] text\n"},
        Writer{"debugWideChars", [] { ZebDebug::writeDebug(L"text"); }, "D [time] text\n"},
        Writer{"debugWideString", [] { ZebDebug::writeDebug(std::wstring(L"text")); }, "D [time] text\n"},
        Writer{"errorChars", [] { ZebDebug::writeError("text"); }, "E [time] text\n"},
        Writer{"errorString", [] { ZebDebug::writeError(std::string("text")); }, "E [time] text\n"},
        Writer{"errorWideChars", [] { ZebDebug::writeError(L"text"); }, "E [time] text\n"},
        Writer{"errorWideString", [] { ZebDebug::writeError(std::wstring(L"text")); }, "E [time] text\n"},
        Writer{"anEmptyText", [] { ZebDebug::writeDebug(""); }, "D [time] \n"},
        Writer{"aNullText", [] { ZebDebug::writeDebug(static_cast<char const*>(nullptr)); }, "D [time] \n"},
        Writer{"aWideNullText", [] { ZebDebug::writeError(static_cast<wchar_t const*>(nullptr)); }, "E [time] \n"},
        Writer{"bytesUnchanged", [] { ZebDebug::writeDebug("\xFC%s\t\xC3\xBC"); }, "D [time] \xFC%s\t\xC3\xBC\n"}),
    [](auto const& writer) { return writer.param.name; });

TEST(ZebDebugPrefix, startsWithTheLetterOfTheType) {
    struct {
        int type;
        char const* letter;
    } const letters[] = {{0, "L "}, {1, "L "}, {2, "D "}, {3, "W "}, {4, "E "}, {5, "L "}, {-1, "L "}};
    for (auto const& [type, letter] : letters)
        EXPECT_EQ(withoutTimes(ZebDebug::now(static_cast<Type>(type))), std::string(letter) + "[time] ") << type;
}

ChildTask const inAnotherZone("in another zone", [](int, std::string const&) {
    Variable const zone("TZ", "CUB-5:30");
    tzset();
    std::time_t const there = std::time(nullptr) + (5 * 60 + 30) * 60;
    std::string const prefix = ZebDebug::now(ZebDebug::mtDebug);
    for (std::time_t const time : {there, there + 1})
        if (prefix == formatted("D [%d-%m-%Y %H:%M:%S] ", *std::gmtime(&time))) return;
    throw std::runtime_error(prefix);
});

TEST(ZebDebugPrefix, holdsTheLocalTime) {
    EXPECT_EQ(1, inAnotherZone.inProcesses(1));
}

TEST_F(ZebDebugTest, writesWideTextInTheNarrowEncoding) {
    ZebDebug::writeDebug(L"Z\u00FCrich \u2192 \U0001F68B");
    EXPECT_EQ(log(), "D [time] " + platform::fromUtf8("Z\xC3\xBCrich \xE2\x86\x92 \xF0\x9F\x9A\x8B") + "\n");
}

TEST_F(ZebDebugTest, tracesFileLineFunctionAndText) {
    struct {
        char const* file;
        int line;
        char const* function;
        char const* text;
        char const* message;
    } const traces[] = {
        {"src\\cubes\\a.cpp", 12, "f", nullptr, "a.cpp@12 f"},
        {"src/cubes/a.cpp", 12, "f", nullptr, "a.cpp@12 f"},
        {"a.cpp", 12, "f", nullptr, "a.cpp@12 f"},
        {"c:\\src/cubes\\x/a.cpp", 12, "f", nullptr, "x/a.cpp@12 f"},
        {"a.cpp", -1, "f", "text", "a.cpp@-1 f text"},
        {"a.cpp", 12, nullptr, "text", "a.cpp@12  text"},
        {nullptr, 12, "f", "text", " text"},
        {nullptr, 12, "f", nullptr, ""},
    };
    std::string expected;
    for (auto const& [file, line, function, text, message] : traces) {
        ZebDebug::writeTrace(file, line, function, text);
        expected += std::string("L [time] ") + message + "\n";
    }
    EXPECT_EQ(log(), expected);
}

TEST_F(ZebDebugTest, writesTheLastSystemError) {
    for (std::uint32_t const code : {2u, 0x1FFFFFFFu}) {
        platform::setLastError(code);
        ZebDebug::writeLastError();
    }
    EXPECT_EQ(log(),
        "E [time] failed with error 2: [" + noSuchFileSentence() + "]\nE [time] failed with error 536870911: []\n");
}

TEST_F(ZebDebugTest, preservesTheLastSystemError) {
    for (std::string const& directory : {directory_.str(), directory_.file("none")})
        for (Operation const& operation : operations) {
            temporary_.set(directory);
            platform::setLastError(33);
            operation.call();
            EXPECT_EQ(platform::lastError(), 33u) << operation.name;
        }
}

TEST_F(ZebDebugTest, writesTheStackUnderItsHeading) {
    ZebDebug::writeStack();
    auto const lines = linesOf(log());
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[0], "L [time] writeStack");
    bool isProgramNamed = false;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        std::string const number = "\t" + std::to_string(i - 1) + ": ";
        EXPECT_TRUE(std::regex_match(lines[i], std::regex(number + ".+ in .+ at line .+ at address 0x[0-9a-f]+")))
            << lines[i];
        isProgramNamed |= lines[i].starts_with(number + "test_core");
    }
    EXPECT_TRUE(isProgramNamed) << log();
}

TEST_F(ZebDebugTest, appendsToAnExistingFile) {
    writeFile(path(), "old\n");
    ZebDebug::writeDebug("new");
    EXPECT_EQ(log(), "old\nD [time] new\n");
}

TEST_F(ZebDebugTest, isClosedBetweenMessages) {
    ZebDebug::writeDebug("one");
    EXPECT_EQ(openings(path()), 0);
    ZebDebug::writeDebug("two");
    EXPECT_EQ(openings(path()), 0);
    EXPECT_EQ(log(), "D [time] one\nD [time] two\n");
}

TEST_F(ZebDebugTest, staysOpenForACallerThatOpensIt) {
    EXPECT_FALSE(ZebDebug::openStream());
    EXPECT_TRUE(ZebDebug::openStream());
    ZebDebug::writeDebug("one");
    EXPECT_EQ(openings(path()), 1);
    EXPECT_EQ(log(), "D [time] one\n");
    EXPECT_TRUE(ZebDebug::openStream());
}

TEST_F(ZebDebugTest, canBeSharedWithOtherWriters) {
    std::ofstream other(path(), std::ios::app);
    ZebDebug::openStream();
    ZebDebug::writeDebug("one");
    other << "two\n" << std::flush;
    ZebDebug::writeDebug("three");
    EXPECT_EQ(log(), "D [time] one\ntwo\nD [time] three\n");
}

TEST_F(ZebDebugTest, usesADirectoryOf259Characters) {
    auto const directory = directoryOfLength(directory_.str(), 259);
    ASSERT_EQ((directory + "/").size(), 259U);
    temporary_.set(directory);
    ZebDebug::writeDebug("text");
    EXPECT_EQ(logIn(directory + "/debug.log"), "D [time] text\n");
}

TEST_F(ZebDebugTest, usesTheSystemsDirectoryInsteadOfALongerOne) {
    auto const directory = directoryOfLength(directory_.str(), 260);
    temporary_.set(directory);
    // A file of its own: other programs write to that directory, too.
    fs::create_directories(temporaryDirectoryWithoutName());
    std::string const name = "cubes-test-" + std::to_string(platform::processId()) + ".log";
    ZebDebug::setDebugOutput(name);
    ZebDebug::writeDebug("text");
    std::string const written = temporaryDirectoryWithoutName() + name;
    EXPECT_EQ(logIn(written), "D [time] text\n");
    EXPECT_EQ(listing(directory), "");
    fs::remove(written);
}

TEST_F(ZebDebugTest, readsTheDirectoryWheneverItOpens) {
    TempDir const other;
    ZebDebug::writeDebug("one");
    temporary_.set(other.str());
    ZebDebug::writeDebug("two");
    EXPECT_EQ(log(), "D [time] one\n");
    EXPECT_EQ(logIn(other.file("debug.log")), "D [time] two\n");
}

TEST_F(ZebDebugTest, switchesToAnotherOutput) {
    TempDir const other;
    for (std::string const& name : {std::string("run 7.txt"), other.file("a.log")}) {
        ZebDebug::openStream();
        ZebDebug::setDebugOutput(name);
        EXPECT_EQ(openings(path()), 0) << "it was closed";
        ZebDebug::writeDebug("text");
        EXPECT_EQ(logIn((fs::path(directory_.str()) / name).string()), "D [time] text\n");
        ZebDebug::setDebugOutput("");
    }
    EXPECT_EQ(log(), "");
}

TEST_F(ZebDebugTest, isNotWrittenWhenItCannotBeOpened) {
    writeFile(directory_.file("file"), "text");
    fs::create_directory(directory_.file("inner"));
    fs::create_directory(directory_.file("inner/debug.log"));
    std::string const before = listing(directory_.str());
    for (char const* const name : {"none", "file", "inner"}) {
        temporary_.set(directory_.file(name));
        ZebDebug::writeDebug("lost");
        EXPECT_FALSE(ZebDebug::openStream());
        EXPECT_FALSE(ZebDebug::openStream());
        EXPECT_EQ(listing(directory_.str()), before);
    }
    temporary_.set(directory_.str());
    ZebDebug::writeDebug("text");
    EXPECT_EQ(log(), "D [time] text\n");
}

TEST_F(ZebDebugTest, containsEveryMessageOfSeveralThreads) {
    constexpr int messages = 200;
    auto const message = [](int writer, int number) {
        return std::to_string(writer) + "/" + std::to_string(number) +
               std::string(static_cast<std::size_t>(number * 37 % 9000), 'x');
    };
    std::vector<std::thread> threads;
    std::multiset<std::string> expected;
    for (int writer = 0; writer < 4; ++writer) {
        for (int number = 0; number < messages; ++number) expected.insert("D [time] " + message(writer, number));
        threads.emplace_back([=] {
            for (int number = 0; number < messages; ++number) ZebDebug::writeDebug(message(writer, number));
        });
    }
    ZebDebug::openStream();
    for (auto& thread : threads) thread.join();
    auto const lines = linesOf(log());
    EXPECT_TRUE(std::multiset<std::string>(lines.begin(), lines.end()) == expected);
}

ChildTask const suddenEnd("sudden end", [](int, std::string const& state) {
    if (state == "open") ZebDebug::openStream();
    ZebDebug::writeDebug("text");
    killThisProcess();
});

TEST_F(ZebDebugTest, losesNothingWhenTheProcessIsKilled) {
    for (char const* const state : {"closed", "open"}) EXPECT_EQ(0, suddenEnd.inProcesses(1, state));
    EXPECT_EQ(log(), "D [time] text\nD [time] text\n");
}

}
