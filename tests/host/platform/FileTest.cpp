#include "host/platform/File.h"

#include "host/platform/FileTesting.h"
#include "host/platform/Files.h"
#include "support/SystemMessages.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <system_error>

#ifndef _WIN32
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#endif

using namespace cubes::platform;
using cubes::test::bytesOf;
using cubes::test::endlessDevice;
using cubes::test::failureOf;
using cubes::test::filesIn;
using cubes::test::isADirectory;
using cubes::test::listing;
using cubes::test::noSuchFile;
using cubes::test::readFile;
using cubes::test::TempDir;
using cubes::test::writeFile;

namespace {

std::string textOf(std::span<std::byte const> bytes) {
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

}

TEST(File, readsAndWritesAtAnyOffset) {
    TempDir const directory;
    File file = File::createNew(directory.file("a"));
    file.writeAt(4, bytesOf("five"));
    file.flush();
    EXPECT_EQ(file.size(), 8u);
    std::string got(8, 'x');
    file.readAt(0, std::as_writable_bytes(std::span(got)));
    EXPECT_EQ(got, std::string("\0\0\0\0five", 8));
    EXPECT_EQ(failureOf([&] { file.readAt(1, std::as_writable_bytes(std::span(got))); }).message(), "it is truncated");
}

TEST(File, namesTheFileThatCannotBeOpenedAndTheReason) {
    TempDir const directory;
    writeFile(directory.file("a"), "");
    EXPECT_EQ(failureOf([&] { File::createNew(directory.file("a")); }), std::errc::file_exists);
    EXPECT_EQ(failureOf([&] { File::openForReading(directory.file("b")); }), std::errc::no_such_file_or_directory);
    EXPECT_EQ(failureOf([&] { File::openForReading(directory.str()); }).message(), isADirectory());
    std::string const device = endlessDevice();
    if (!device.empty()) {
        EXPECT_EQ(failureOf([&] { File::openForReading(device); }).message(), "it is not a regular file");
    }
    try {
        File::openForReading(directory.file("b"));
        FAIL();
    } catch (std::system_error const& error) {
        EXPECT_EQ(error.what(), "cannot open " + directory.file("b") + ": " + noSuchFile());
    }
}

TEST(FileView, isPrivateAndKeepsTheStateOfAReplacedFile) {
    TempDir const directory;
    writeFile(directory.file("a"), "old");
    FileView view = FileView::open(directory.file("a"));
    writeFile(directory.file("b"), "newer");
    EXPECT_TRUE(renameFile(directory.file("b"), directory.file("a")));
    EXPECT_EQ(textOf(view.bytes()), "old");
    view.bytes()[0] = std::byte{'c'};
    EXPECT_EQ(textOf(view.bytes()), "cld");
    EXPECT_EQ(readFile(directory.file("a")), "newer");
    FileView const moved = std::move(view);
    EXPECT_EQ(moved.bytes().size(), 3u);
    EXPECT_TRUE(view.bytes().empty());
    writeFile(directory.file("empty"), "");
    EXPECT_TRUE(FileView::open(directory.file("empty")).bytes().empty());
}

TEST(FileView, keepsTheStateOfARemovedFile) {
    TempDir const directory;
    writeFile(directory.file("a"), "old");
    {
        FileView const view = FileView::open(directory.file("a"));
        EXPECT_TRUE(discardFile(directory.file("a")));
        EXPECT_EQ(filesIn(directory.str()), "");
        EXPECT_EQ(textOf(view.bytes()), "old");
        EXPECT_FALSE(discardFile(directory.file("a")));
    }
    // A file that was kept for the view is removed with the next replacement.
    writeFile(directory.file("b"), "old");
    writeFile(directory.file("c"), "new");
    EXPECT_TRUE(renameFile(directory.file("c"), directory.file("b")));
    EXPECT_EQ(listing(directory.str()), "b\n");
}

TEST(ByteLock, excludesOthersFromItsByteOnly) {
    TempDir const directory;
    std::string const file = directory.file("lock");
    constexpr std::uint64_t farthest = ~std::uint64_t{0} >> 1;
    auto first = ByteLock::tryTake(file, farthest);
    ASSERT_TRUE(first);
    EXPECT_FALSE(ByteLock::tryTake(file, farthest));
    EXPECT_TRUE(ByteLock::tryTake(file, 0));
    first.reset();
    EXPECT_TRUE(ByteLock::tryTake(file, farthest));
    EXPECT_EQ(
        failureOf([&] { ByteLock::tryTake(directory.file("none/lock"), 1); }), std::errc::no_such_file_or_directory);
}

#ifndef _WIN32
// A child has the files of its parent until it runs its own program.
TEST(ByteLock, isReleasedByItsOwnerAlsoWhileAChildHasTheFileOpen) {
    TempDir const directory;
    std::string const file = directory.file("lock");
    auto lock = ByteLock::tryTake(file, 7);
    pid_t const forgetful = fork();
    if (forgetful == 0) {
        lock.reset();
        _exit(0);
    }
    waitpid(forgetful, nullptr, 0);
    EXPECT_FALSE(ByteLock::tryTake(file, 7));
    pid_t const child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    lock.reset();
    EXPECT_TRUE(ByteLock::tryTake(file, 7));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}
#endif

TEST(ByteLock, findsTheBytesThatOthersHold) {
    TempDir const directory;
    std::string const file = directory.file("lock");
    auto const first = ByteLock::tryTake(file, 10);
    auto const second = ByteLock::tryTake(file, 20);
    struct {
        std::uint64_t position, length;
        bool isHeld;
    } const cases[] = {
        {0, 10, false}, {0, 11, true}, {10, 1, true}, {11, 9, false}, {15, ~std::uint64_t{0} >> 2, false}};
    for (auto const& [position, length, isHeld] : cases)
        EXPECT_EQ(second->isHeldByOthers(position, length), isHeld) << position;
    EXPECT_TRUE(first->isHeldByOthers(15, 10));
}
