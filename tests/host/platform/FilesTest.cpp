#include "host/platform/Files.h"

#include "host/platform/FileTesting.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <system_error>

namespace fs = std::filesystem;
namespace platform = cubes::platform;
using cubes::test::failureOf;
using cubes::test::isLink;
using cubes::test::listing;
using cubes::test::makeLink;
using cubes::test::nativePath;
using cubes::test::otherFileSystem;
using cubes::test::readFile;
using cubes::test::TempDir;
using cubes::test::writeFile;
using platform::copyContent;
using platform::File;
using platform::flushFile;
using platform::renameFile;

namespace {

std::string noise(std::size_t size) {
    std::mt19937 random(7);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

/// Copies within one directory, or from one to another.
void expectCopies(TempDir const& from, TempDir const& to) {
    for (std::size_t const size : {0u, 1u, 4095u, (1u << 20) + 1, (5u << 20) + 3}) {
        std::string const bytes = noise(size);
        writeFile(from.file("source"), bytes);
        File target = File::createNew(to.file("target"));
        copyContent(from.file("source"), target);
        target.flush();
        EXPECT_EQ(target.size(), size);
        target.close();
        EXPECT_TRUE(readFile(to.file("target")) == bytes) << size;
        EXPECT_TRUE(readFile(from.file("source")) == bytes) << size;
        fs::remove(to.file("target"));
    }
}

}

TEST(Files, areDistinguishedFromDirectories) {
    TempDir const directory;
    writeFile(directory.file("a"), "");
    EXPECT_TRUE(platform::isRegularFile(directory.file("a")));
    EXPECT_FALSE(platform::isDirectory(directory.file("a")));
    EXPECT_TRUE(platform::isDirectory(directory.str()));
    EXPECT_FALSE(platform::isRegularFile(directory.str()));
    EXPECT_FALSE(platform::exists(directory.file("b")));
    EXPECT_FALSE(platform::exists(""));
    EXPECT_FALSE(platform::isDirectory(""));
}

TEST(Files, removeALinkAndNotItsTarget) {
    TempDir const directory;
    platform::createDirectories(directory.file("kept"));
    writeFile(directory.file("kept/a"), "A");
    if (!makeLink(directory.file("kept"), directory.file("directory"))) GTEST_SKIP() << "SKIPPED: no links here";
    makeLink(directory.file("kept/a"), directory.file("file"));
    EXPECT_TRUE(platform::removeDirectory(directory.file("directory"), true));
    EXPECT_TRUE(platform::removeFile(directory.file("file")));
    EXPECT_EQ("kept\nkept/a\n", listing(directory.str()));
}

TEST(Files, areCopiedWholeOrNotAtAll) {
    TempDir const directory;
    writeFile(directory.file("a"), "new");
    writeFile(directory.file("b"), "old");
    platform::createDirectories(directory.file("d"));
    EXPECT_TRUE(platform::copyFile(directory.file("a"), directory.file("b")));
    EXPECT_EQ("new", readFile(directory.file("b")));
    EXPECT_FALSE(platform::copyFile(directory.file("a"), directory.file("a")));
    EXPECT_FALSE(platform::copyFile(directory.file("a"), directory.file("d")));
    EXPECT_FALSE(platform::copyFile(directory.file("d"), directory.file("c")));
    EXPECT_FALSE(platform::copyFile(directory.file("a"), directory.file("none/a")));
    EXPECT_EQ("a\nb\nd\n", listing(directory.str()));
}

TEST(Files, moveADirectory) {
    TempDir const directory;
    fs::create_directory(directory.file("a"));
    writeFile(directory.file("a/inner"), "content");
    EXPECT_TRUE(platform::moveDirectory(directory.file("a"), directory.file("b")));
    EXPECT_EQ("b\nb/inner\n", listing(directory.str()));
    EXPECT_EQ("content", readFile(directory.file("b/inner")));
}

TEST(Files, refuseToMoveADirectoryToATakenOrImpossibleName) {
    TempDir const directory;
    for (char const* name : {"a", "empty"}) fs::create_directory(directory.file(name));
    writeFile(directory.file("file"), "file");
    bool const hasLink = makeLink(directory.file("none"), directory.file("link"));
    for (char const* taken : {"empty", "file", hasLink ? "link" : "file", "a", "none/a"})
        EXPECT_FALSE(platform::moveDirectory(directory.file("a"), directory.file(taken))) << taken;
    for (char const* noDirectory : {"file", "missing"})
        EXPECT_FALSE(platform::moveDirectory(directory.file(noDirectory), directory.file("b"))) << noDirectory;
    EXPECT_FALSE(platform::moveDirectory(directory.file("a"), ""));
    EXPECT_FALSE(platform::moveDirectory("", directory.file("b")));
    EXPECT_EQ("file", readFile(directory.file("file")));
    EXPECT_TRUE(fs::is_directory(directory.file("a")));
    EXPECT_EQ(platform::isLink(directory.file("link")), hasLink);
    EXPECT_FALSE(fs::exists(directory.file("b")));
}

TEST(Files, areNotMovedToAnotherFileSystemAsADirectory) {
    TempDir const directory;
    std::string const other = otherFileSystem(directory.str());
    if (other.empty()) GTEST_SKIP() << "SKIPPED: no second file system here";
    TempDir const there(other);
    fs::create_directory(directory.file("a"));
    EXPECT_FALSE(platform::moveDirectory(directory.file("a"), there.file("a")));
    EXPECT_EQ("a\n", listing(directory.str()) + listing(there.str()));
}

TEST(Files, haveADirectory) {
    EXPECT_EQ("/data", platform::directoryOf("/data/a"));
    EXPECT_EQ("data", platform::directoryOf("data/a"));
    EXPECT_EQ(".", platform::directoryOf("a"));
}

TEST(Files, needNotExistForAnAbsolutePath) {
    TempDir const directory;
    EXPECT_EQ(directory.file("b"), platform::absolutePath(directory.file("./a/../b")));
    EXPECT_EQ((fs::current_path() / "a").string(), platform::absolutePath("a"));
}

TEST(Files, areTheSameDirectoryUnderAnyOfItsNames) {
    TempDir const directory;
    fs::create_directory(directory.file("a"));
    fs::create_directory(directory.file("b"));
    EXPECT_TRUE(platform::isSameDirectory(directory.file("a"), directory.file("b/../a/")));
    EXPECT_FALSE(platform::isSameDirectory(directory.file("a"), directory.file("b")));
    EXPECT_FALSE(platform::isSameDirectory(directory.file("a"), directory.file("none")));
    EXPECT_FALSE(platform::isSameDirectory("", ""));
}

TEST(Files, areRenamedOverFilesButNotOverDirectories) {
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

TEST(Files, loseTheOldNameWhenTheNewOneIsAlreadyTheirs) {
    TempDir const directory;
    writeFile(directory.file("a"), "content");
    std::error_code noLinks;
    fs::create_hard_link(directory.file("a"), directory.file("b"), noLinks);
    if (noLinks) GTEST_SKIP() << "SKIPPED: no second names for files here";
    EXPECT_TRUE(renameFile(directory.file("a"), directory.file("b")));
    EXPECT_EQ(listing(directory.str()), "b\n");
    fs::create_hard_link(directory.file("b"), directory.file("c"));
    fs::create_directory(directory.file("d"));
    EXPECT_TRUE(renameFile(directory.file("b"), directory.file("d/../b")));
    EXPECT_EQ(listing(directory.str()), "b\nc\nd\n");
    EXPECT_EQ(readFile(directory.file("b")), "content");
}

TEST(Files, areNotRenamedToAnotherFileSystem) {
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

TEST(Files, areFlushedByNameWhenTheyExist) {
    TempDir const directory;
    writeFile(directory.file("a"), "a");
    EXPECT_NO_THROW(flushFile(directory.file("a")));
    EXPECT_EQ(failureOf([&] { flushFile(directory.file("b")); }), std::errc::no_such_file_or_directory);
    EXPECT_EQ(listing(directory.str()), "a\n");
}

TEST(CopyContent, copiesFilesOfAnySize) {
    TempDir const directory;
    expectCopies(directory, directory);
}

TEST(CopyContent, refusesADirectoryAndAMissingFile) {
    TempDir const directory;
    File target = File::createNew(directory.file("target"));
    EXPECT_THROW(copyContent(directory.file("missing"), target), std::system_error);
    EXPECT_THROW(copyContent(directory.str(), target), std::system_error);
}

TEST(CopyContent, namesTheMissingSource) {
    TempDir const directory;
    File target = File::createNew(directory.file("target"));
    try {
        copyContent(directory.file("none"), target);
        ADD_FAILURE() << "copied";
    } catch (std::system_error const& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("cannot open " + directory.file("none"))) << error.what();
    }
}

TEST(CopyContent, sharesNoLaterChanges) {
    TempDir const directory;
    writeFile(directory.file("source"), "old content");
    File target = File::createNew(directory.file("target"));
    copyContent(directory.file("source"), target);
    target.close();
    writeFile(directory.file("source"), "new");
    EXPECT_EQ(readFile(directory.file("target")), "old content");
}

TEST(CopyContent, copiesToAnotherFileSystem) {
    TempDir const directory;
    std::string const elsewhere = otherFileSystem(directory.str());
    if (elsewhere.empty()) GTEST_SKIP() << "SKIPPED: no second file system here";
    TempDir const other(elsewhere);
    expectCopies(directory, other);
    expectCopies(other, directory);
}
