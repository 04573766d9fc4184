#include "core/DebugLogTest.h"
#include "support/OpenFiles.h"

#include <functional>
#include <random>

namespace cubes::test {

namespace fs = std::filesystem;

namespace {

void callEveryOperation() {
    ZebDebug::openStream();
    ZebDebug::write(ZebDebug::mtLog, "text");
    ZebDebug::write(ZebDebug::mtLog, L"text");
    ZebDebug::writeDebug("text");
    ZebDebug::writeDebug(std::string("text"));
    ZebDebug::writeDebug(L"text");
    ZebDebug::writeDebug(std::wstring(L"text"));
    ZebDebug::writeError("text");
    ZebDebug::writeError(std::string("text"));
    ZebDebug::writeError(L"text");
    ZebDebug::writeError(std::wstring(L"text"));
    ZebDebug::writeToDebugger("text");
    ZebDebug::writeToDebugger(L"text");
    ZebDebug::writeLastError();
    ZebDebug::writeTrace("a.cpp", 1, "f", "text");
    ZebDebug::writeStack();
    ZebDebug::setDebugOutput("other.log");
    ZebDebug::doDebuggingBreak();
}

// A directory whose path with a "/" behind it has so many characters.
std::string directoryOfLength(std::string directory, std::size_t length) {
    while (directory.size() + 1 < length) {
        std::size_t const missing = length - 1 - directory.size();
        directory += "/" + std::string(missing > 150 ? 100 : missing - 1, 'd');
    }
    fs::create_directories(directory);
    return directory;
}

// A name of our own in the system's temporary directory, where others write too.
class SystemLog {
public:
    explicit SystemLog(std::string directory) : directory_(std::move(directory)) { ZebDebug::setDebugOutput(name_); }
    ~SystemLog() { fs::remove(path()); }
    std::string path() const { return directory_ + name_; }

private:
    std::string directory_;
    std::string name_ = "cubes-test-" + std::to_string(std::random_device{}()) + ".log";
};

}

TEST_F(DebugLogTest, isActiveForTrueInAnyLetterCase) {
    for (char const* const value : {"true", "TRUE", "True", "tRuE"}) {
        active_.set(value);
        EXPECT_TRUE(ZebDebug::isDebuggingActive()) << value;
    }
}

TEST_F(DebugLogTest, isNotActiveForAnyOtherValue) {
    for (char const* const value :
        {"", "1", "yes", "on", "false", "true ", " true", "truetrue", "tru", "t\xC5\xAEre"}) {
        active_.set(value);
        EXPECT_FALSE(ZebDebug::isDebuggingActive()) << value;
    }
    active_.set(std::nullopt);
    EXPECT_FALSE(ZebDebug::isDebuggingActive());
}

TEST_F(DebugLogTest, doesNothingWhileItIsNotActive) {
    for (auto const& value : {std::optional<std::string>(), std::optional<std::string>("1")}) {
        active_.set(value);
        callEveryOperation();
        EXPECT_EQ(listing(directory_.str()), "");
    }
}

TEST_F(DebugLogTest, asksTheSwitchAtEveryCall) {
    ZebDebug::writeDebug("one");
    active_.set("no");
    ZebDebug::writeDebug("two");
    active_.set("True");
    ZebDebug::writeDebug("three");
    EXPECT_EQ(log(), "D [time] one\nD [time] three\n");
}

TEST_F(DebugLogTest, writesEveryMessageWhileItIsActive) {
    callEveryOperation();
    EXPECT_NE(log().find("] a.cpp@1 f text\n"), std::string::npos) << log();
    EXPECT_EQ(listing(directory_.str()), "debug.log\n");
}

TEST_F(DebugLogTest, appendsToWhatIsThere) {
    writeFile(path(), "old\n");
    ZebDebug::writeDebug("new");
    EXPECT_EQ(log(), "old\nD [time] new\n");
}

TEST_F(DebugLogTest, isClosedBetweenMessages) {
    ZebDebug::writeDebug("one");
    EXPECT_EQ(openings(path()), 0);
    ZebDebug::writeDebug("two");
    EXPECT_EQ(openings(path()), 0);
    EXPECT_EQ(log(), "D [time] one\nD [time] two\n");
}

TEST_F(DebugLogTest, staysOpenForACallerThatOpensIt) {
    EXPECT_FALSE(ZebDebug::openStream());
    EXPECT_TRUE(ZebDebug::openStream());
    ZebDebug::writeDebug("one");
    EXPECT_EQ(openings(path()), 1);
    EXPECT_EQ(log(), "D [time] one\n");
    EXPECT_TRUE(ZebDebug::openStream());
}

TEST_F(DebugLogTest, opensNothingWhileItIsNotActive) {
    active_.set("no");
    EXPECT_FALSE(ZebDebug::openStream());
    EXPECT_FALSE(ZebDebug::openStream());
    EXPECT_EQ(log(), "(none)");
}

TEST_F(DebugLogTest, isStillOpenWhenItIsSwitchedOff) {
    ZebDebug::openStream();
    active_.set("no");
    EXPECT_TRUE(ZebDebug::openStream());
    ZebDebug::writeDebug("text");
    EXPECT_EQ(log(), "");
}

TEST_F(DebugLogTest, asksForTheDirectoryAtEachOpening) {
    ZebDebug::writeDebug("one");
    TempDir const other;
    temporary_.set(other.str());
    ZebDebug::writeDebug("two");
    EXPECT_EQ(log(), "D [time] one\n");
    EXPECT_EQ(logIn(other.file("debug.log")), "D [time] two\n");
}

TEST_F(DebugLogTest, keepsTheDirectoryWhileItIsOpen) {
    ZebDebug::openStream();
    TempDir const other;
    temporary_.set(other.str());
    ZebDebug::writeDebug("text");
    EXPECT_EQ(log(), "D [time] text\n");
    EXPECT_EQ(listing(other.str()), "");
}

TEST_F(DebugLogTest, takesADirectoryThatEndsInADelimiter) {
    temporary_.set(directory_.str() + "/");
    ZebDebug::writeDebug("text");
    EXPECT_EQ(log(), "D [time] text\n");
}

TEST_F(DebugLogTest, takesTheSystemsDirectoryWhenNoneIsNamed) {
    for (auto const& value : {std::optional<std::string>(), std::optional<std::string>("")}) {
        SystemLog const log("/tmp/");
        temporary_.set(value);
        ZebDebug::writeDebug("text");
        EXPECT_EQ(logIn(log.path()), "D [time] text\n");
    }
}

TEST_F(DebugLogTest, takesADirectoryOf259Characters) {
    auto const directory = directoryOfLength(directory_.str(), 259);
    ASSERT_EQ((directory + "/").size(), 259U);
    temporary_.set(directory);
    ZebDebug::writeDebug("text");
    EXPECT_EQ(logIn(directory + "/debug.log"), "D [time] text\n");
}

TEST_F(DebugLogTest, takesTheSystemsDirectoryForALongerOne) {
    auto const directory = directoryOfLength(directory_.str(), 260);
    ASSERT_EQ((directory + "/").size(), 260U);
    temporary_.set(directory);
    SystemLog const log(temporaryDirectoryWithoutName());
    ZebDebug::writeDebug("text");
    EXPECT_EQ(logIn(log.path()), "D [time] text\n");
    EXPECT_EQ(listing(directory), "");
}

TEST_F(DebugLogTest, takesAPlainNameInTheTemporaryDirectory) {
    ZebDebug::setDebugOutput("run 7.txt");
    ZebDebug::writeDebug("text");
    EXPECT_EQ(logIn(directory_.file("run 7.txt")), "D [time] text\n");
    EXPECT_EQ(log(), "(none)");
}

TEST_F(DebugLogTest, takesANameWithASeparatorAsAPath) {
    TempDir const other;
    ZebDebug::setDebugOutput(other.file("a.log"));
    ZebDebug::writeDebug("one");
    std::string backslashes = other.file("a.log");
    for (char& character : backslashes)
        if (character == '/') character = '\\';
    ZebDebug::setDebugOutput(backslashes);
    ZebDebug::writeDebug("two");
    EXPECT_EQ(logIn(other.file("a.log")), "D [time] one\nD [time] two\n");
    EXPECT_EQ(log(), "(none)");
}

TEST_F(DebugLogTest, isTheUsualOneAgainForAnEmptyName) {
    ZebDebug::setDebugOutput("other.log");
    ZebDebug::setDebugOutput("");
    ZebDebug::writeDebug("text");
    EXPECT_EQ(listing(directory_.str()), "debug.log\n");
}

TEST_F(DebugLogTest, isClosedByTakingAnotherOutput) {
    ZebDebug::openStream();
    ZebDebug::setDebugOutput("other.log");
    EXPECT_EQ(openings(path()), 0);
    ZebDebug::writeDebug("text");
    EXPECT_EQ(logIn(directory_.file("other.log")), "D [time] text\n");
    EXPECT_EQ(log(), "");
    EXPECT_FALSE(ZebDebug::openStream());
}

TEST_F(DebugLogTest, takesNoOutputWhileItIsNotActive) {
    active_.set("no");
    ZebDebug::setDebugOutput("other.log");
    active_.set("true");
    ZebDebug::writeDebug("text");
    EXPECT_EQ(listing(directory_.str()), "debug.log\n");
}

}
