#include "host/platform/ByteLock.h"
#include "host/platform/File.h"
#include "host/platform/FileView.h"
#include "host/platform/Parallel.h"
#include "host/platform/TemporaryFile.h"
#include "support/SystemWords.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

using namespace cubes::platform;
using cubes::test::filesIn;
using cubes::test::isADirectory;
using cubes::test::listing;
using cubes::test::noSuchFile;
using cubes::test::otherFileSystem;
using cubes::test::pastTheEnd;
using cubes::test::readFile;
using cubes::test::TempDir;
using cubes::test::writeFile;

namespace {

std::span<std::byte const> bytesOf(std::string const& text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

std::string textOf(std::span<std::byte const> bytes) {
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}

std::error_code failureOf(auto const& work) {
    try {
        work();
    } catch (std::system_error const& error) {
        return error.code();
    }
    return {};
}

}

TEST(File, readsAndWritesAtAnyPlace) {
    TempDir const directory;
    File file = File::createNew(directory.file("a"));
    file.writeAt(4, bytesOf("five"));
    file.flush();
    EXPECT_EQ(file.size(), 8u);
    std::string got(8, 'x');
    file.readAt(0, std::as_writable_bytes(std::span(got)));
    EXPECT_EQ(got, std::string("\0\0\0\0five", 8));
    EXPECT_EQ(failureOf([&] { file.readAt(1, std::as_writable_bytes(std::span(got))); }).message(), pastTheEnd());
}

TEST(File, saysWhatCouldNotBeOpened) {
    TempDir const directory;
    writeFile(directory.file("a"), "");
    EXPECT_EQ(failureOf([&] { File::createNew(directory.file("a")); }), std::errc::file_exists);
    EXPECT_EQ(failureOf([&] { File::openForReading(directory.file("b")); }), std::errc::no_such_file_or_directory);
    EXPECT_EQ(failureOf([&] { File::openForReading(directory.str()); }).message(), isADirectory());
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
    // What had to be kept for the view goes when a file is replaced.
    writeFile(directory.file("b"), "old");
    writeFile(directory.file("c"), "new");
    EXPECT_TRUE(renameFile(directory.file("c"), directory.file("b")));
    EXPECT_EQ(listing(directory.str()), "b\n");
}

TEST(File, takesAnotherNameInPlaceOfAFileButOfNoDirectory) {
    TempDir const directory;
    writeFile(directory.file("a"), "new");
    writeFile(directory.file("b"), "old");
    EXPECT_TRUE(renameFile(directory.file("a"), directory.file("b")));
    EXPECT_EQ(readFile(directory.file("b")), "new");
    std::filesystem::create_directory(directory.file("c"));
    EXPECT_TRUE(failureOf([&] { renameFile(directory.file("b"), directory.file("c")); }));
    EXPECT_EQ(failureOf([&] { renameFile(directory.file("none"), directory.file("d")); }),
        std::errc::no_such_file_or_directory);
    EXPECT_EQ(listing(directory.str()), "b\nc\n");
}

TEST(File, takesNoNameOnAnotherFileSystem) {
    TempDir const directory;
    std::string const other = otherFileSystem(directory.str());
    if (other.empty()) GTEST_SKIP() << "SKIPPED: no second file system here";
    TempDir const there(other);
    writeFile(directory.file("a"), "a");
    writeFile(there.file("a"), "old");
    EXPECT_FALSE(renameFile(directory.file("a"), there.file("a")));
    EXPECT_FALSE(renameFile(directory.file("a"), there.file("b")));
    EXPECT_EQ(readFile(directory.file("a")) + readFile(there.file("a")), "aold");
    EXPECT_EQ(listing(directory.str()) + listing(there.str()), "a\na\n");
}

TEST(File, isFlushedByItsNameWhenItIsThere) {
    TempDir const directory;
    writeFile(directory.file("a"), "a");
    EXPECT_NO_THROW(flushFile(directory.file("a")));
    EXPECT_EQ(failureOf([&] { flushFile(directory.file("b")); }), std::errc::no_such_file_or_directory);
    EXPECT_EQ(listing(directory.str()), "a\n");
}

TEST(TemporaryFile, takesTheTargetsPlaceOrLeavesNothing) {
    TempDir const directory;
    writeFile(directory.file("a"), "old");
    {
        TemporaryFile unpublished(directory.file("a"));
        unpublished.file().writeAt(0, bytesOf("half"));
        EXPECT_TRUE(isTemporaryName(std::filesystem::path(unpublished.path()).filename().string()));
    }
    EXPECT_EQ(readFile(directory.file("a")), "old");
    TemporaryFile published(directory.file("a"));
    published.file().writeAt(0, bytesOf("new"));
    published.publish();
    EXPECT_EQ(readFile(directory.file("a")), "new");
    EXPECT_EQ(listing(directory.str()), "a\n");
}

TEST(TemporaryFile, leavesRoomInItsNameForLongOnes) {
    TempDir const directory;
    std::string const longest(255, 'n');
    TemporaryFile file(directory.file(longest));
    file.publish();
    EXPECT_EQ(listing(directory.str()), longest + "\n");
}

TEST(TemporaryFile, isKnownByItsName) {
    for (char const* name : {".a.skm.12-0.cubes-tmp", ".cubes-tmp"}) EXPECT_TRUE(isTemporaryName(name)) << name;
    for (char const* name : {"a.skm", "a.cubes-tmp", ".cubes-lock", ".a.cubes-tmp.skm", ""})
        EXPECT_FALSE(isTemporaryName(name)) << name;
}

TEST(ByteLock, excludesOthersFromItsByteAlone) {
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

TEST(Parallel, doesEverythingOnceAndPassesTheFirstFailureOn) {
    std::vector<std::atomic<int>> done(1000);
    inParallel(done.size(), [&] { return [&](std::size_t i) { ++done[i]; }; });
    for (auto const& times : done) EXPECT_EQ(times, 1);
    inParallel(0, [] { return [](std::size_t) { FAIL(); }; });
    auto const failAtSeven = [](std::size_t i) {
        if (i == 7) throw std::runtime_error("seven");
    };
    EXPECT_THROW(inParallel(50, [&] { return failAtSeven; }), std::runtime_error);
}
