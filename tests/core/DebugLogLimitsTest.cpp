#include "core/DebugLogObstacles.h"
#include "support/Forked.h"

#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cubes::test {

namespace fs = std::filesystem;

namespace {

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

void useUpAllFiles() {
    rlimit limit{};
    expect(getrlimit(RLIMIT_NOFILE, &limit) == 0, "the limit is told");
    limit.rlim_cur = 0;
    expect(setrlimit(RLIMIT_NOFILE, &limit) == 0, "the limit is set");
}

bool isHeldOrPending(int signal) {
    sigset_t held;
    sigset_t pending;
    pthread_sigmask(SIG_BLOCK, nullptr, &held);
    sigpending(&pending);
    return sigismember(&held, signal) == 1 || sigismember(&pending, signal) == 1;
}

}

INSTANTIATE_TEST_SUITE_P(system, Obstacles,
    testing::Values( //
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

// In a process of its own: a test needs files.
TEST_F(DebugLogTest, leavesTheLastSystemErrorAsItWasWhenNoFileCanBeOpened) {
    EXPECT_EQ(1, inProcesses(1, [](int) {
        // Once with files: the sanitizers look at each kind of object through a pipe when it first comes.
        disturbing();
        useUpAllFiles();
        std::string const names = disturbing();
        if (!names.empty()) throw std::runtime_error(names);
    }));
}

}
