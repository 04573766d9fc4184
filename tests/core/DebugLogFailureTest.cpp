#include "core/DebugLogTest.h"
#include "support/Forked.h"

#include <csignal>
#include <functional>
#include <set>
#include <stdexcept>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cubes::test {

namespace fs = std::filesystem;

namespace {

struct Obstacle {
    char const* name;
    // Puts it in the way, in a directory of its own, and gives the temporary directory to use.
    std::function<std::string(TempDir const&)> build;
};

class Obstacles : public DebugLogTest, public testing::WithParamInterface<Obstacle> {};

void writeEverything() {
    ZebDebug::writeDebug("text");
    ZebDebug::writeError(L"text");
    ZebDebug::writeTrace("a.cpp", 1, "f", "text");
    ZebDebug::writeLastError();
    ZebDebug::writeStack();
}

// A link to itself stops those that look behind it.
std::set<std::string> namesIn(TempDir const& directory) {
    std::set<std::string> names;
    for (auto const& entry : fs::directory_iterator(directory.str())) names.insert(entry.path().filename().string());
    return names;
}

void expect(bool condition, char const* claim) {
    if (!condition) throw std::runtime_error(claim);
}

// As on a disk with so much room. What goes beyond it fails and raises a signal.
void limitFilesTo(rlim_t bytes) {
    rlimit limit{};
    expect(getrlimit(RLIMIT_FSIZE, &limit) == 0, "the limit is told");
    limit.rlim_cur = bytes;
    expect(setrlimit(RLIMIT_FSIZE, &limit) == 0, "the limit is set");
}

bool isHeldOrPending(int signal) {
    sigset_t held;
    sigset_t pending;
    pthread_sigmask(SIG_BLOCK, nullptr, &held);
    sigpending(&pending);
    return sigismember(&held, signal) == 1 || sigismember(&pending, signal) == 1;
}

}

TEST_P(Obstacles, areOfNoConsequence) {
    TempDir const room;
    temporary_.set(GetParam().build(room));
    auto const before = namesIn(room);
    EXPECT_NO_THROW(writeEverything());
    EXPECT_FALSE(ZebDebug::openStream());
    EXPECT_NO_THROW(writeEverything());
    EXPECT_EQ(namesIn(room), before);
}

TEST_P(Obstacles, areForgottenWhenTheyAreGone) {
    TempDir const room;
    temporary_.set(GetParam().build(room));
    ZebDebug::writeDebug("lost");
    temporary_.set(directory_.str());
    ZebDebug::writeDebug("text");
    EXPECT_EQ(log(), "D [time] text\n");
}

INSTANTIATE_TEST_SUITE_P(all, Obstacles,
    testing::Values( //
        Obstacle{"aDirectoryThatIsNotThere", [](TempDir const& room) { return room.file("none"); }},
        Obstacle{"aFileForADirectory",
            [](TempDir const& room) {
                writeFile(room.file("file"), "text");
                return room.file("file");
            }},
        Obstacle{"aDirectoryForTheFile",
            [](TempDir const& room) {
                fs::create_directory(room.file("debug.log"));
                return room.str();
            }},
        Obstacle{"aLinkToItself",
            [](TempDir const& room) {
                fs::create_symlink("debug.log", room.file("debug.log"));
                return room.str();
            }},
        Obstacle{"aPipeThatNobodyReads",
            [](TempDir const& room) {
                mkfifo(room.file("debug.log").c_str(), 0600);
                return room.str();
            }},
        Obstacle{"aLinkToNowhere",
            [](TempDir const& room) {
                fs::create_symlink(room.file("none/debug.log"), room.file("debug.log"));
                return room.str();
            }}),
    [](auto const& obstacle) { return obstacle.param.name; });

TEST_F(DebugLogTest, survivesANameThatIsTooLong) {
    ZebDebug::setDebugOutput(std::string(300, 'x'));
    EXPECT_NO_THROW(writeEverything());
    EXPECT_EQ(listing(directory_.str()), "");
}

TEST_F(DebugLogTest, survivesAFullDisk) {
    fs::create_symlink("/dev/full", path());
    EXPECT_NO_THROW(writeEverything());
    EXPECT_FALSE(ZebDebug::openStream());
    EXPECT_TRUE(ZebDebug::openStream());
    EXPECT_NO_THROW(writeEverything());
}

TEST_F(DebugLogTest, holdsWholeLinesOnlyWhenTheDiskIsFull) {
    ZebDebug::writeDebug("first");
    auto const line = fs::file_size(path());
    for (bool const keptOpen : {false, true}) {
        fs::resize_file(path(), line);
        EXPECT_EQ(1, inProcesses(1, [&](int) {
            if (keptOpen) ZebDebug::openStream();
            limitFilesTo(line + 10);
            ZebDebug::writeDebug("does not fit");
            limitFilesTo(RLIM_INFINITY);
            ZebDebug::writeDebug("last");
        }));
        EXPECT_EQ(log(), "D [time] first\nD [time] last\n");
    }
}

TEST_F(DebugLogTest, leavesNoSignalBehindWhenTheDiskIsFull) {
    EXPECT_EQ(1, inProcesses(1, [](int) {
        limitFilesTo(0);
        ZebDebug::writeDebug("does not fit");
        expect(!isHeldOrPending(SIGXFSZ), "the signal is gone");
    }));
    EXPECT_EQ(log(), "");
}

TEST_F(DebugLogTest, leavesASignalThatCameBefore) {
    EXPECT_EQ(1, inProcesses(1, [](int) {
        sigset_t set;
        sigemptyset(&set);
        sigaddset(&set, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &set, nullptr);
        raise(SIGXFSZ);
        ZebDebug::writeDebug("text");
        expect(isHeldOrPending(SIGXFSZ), "the signal still waits");
    }));
    EXPECT_EQ(log(), "D [time] text\n");
}

TEST_F(DebugLogTest, survivesAReaderThatGoesAway) {
    ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
    EXPECT_EQ(1, inProcesses(1, [&](int) {
        int const reader = open(path().c_str(), O_RDONLY | O_NONBLOCK);
        expect(reader >= 0 && !ZebDebug::openStream() && ZebDebug::openStream(), "the pipe is open");
        close(reader);
        ZebDebug::writeDebug("text");
        expect(!isHeldOrPending(SIGPIPE), "the signal is gone");
    }));
}

TEST_F(DebugLogTest, beginsAnewWhenTheFileIsRemoved) {
    ZebDebug::writeDebug("one");
    fs::remove(path());
    ZebDebug::writeDebug("two");
    EXPECT_EQ(log(), "D [time] two\n");
}

TEST_F(DebugLogTest, survivesThatTheFileIsRemovedWhileOpen) {
    ZebDebug::openStream();
    fs::remove(path());
    EXPECT_NO_THROW(writeEverything());
    EXPECT_EQ(log(), "(none)");
    ZebDebug::setDebugOutput("");
    ZebDebug::writeDebug("text");
    EXPECT_EQ(log(), "D [time] text\n");
}

TEST_F(DebugLogTest, survivesThatTheDirectoryIsRemovedWhileOpen) {
    auto const directory = directory_.file("inner");
    fs::create_directory(directory);
    temporary_.set(directory);
    ZebDebug::openStream();
    fs::remove_all(directory);
    EXPECT_NO_THROW(writeEverything());
    ZebDebug::setDebugOutput("");
    EXPECT_NO_THROW(writeEverything());
    EXPECT_EQ(listing(directory_.str()), "");
}

}
