#include "host/platform/Files.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;
namespace platform = cubes::platform;
using cubes::test::isLink;
using cubes::test::listing;
using cubes::test::makeLink;
using cubes::test::nativePath;
using cubes::test::otherFileSystem;
using cubes::test::readFile;
using cubes::test::TempDir;
using cubes::test::writeFile;

TEST(Files, tellFilesFromDirectories) {
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

TEST(Files, removeALinkAndNotWhatItLeadsTo) {
    TempDir const directory;
    platform::createDirectories(directory.file("kept"));
    writeFile(directory.file("kept/a"), "A");
    if (!makeLink(directory.file("kept"), directory.file("directory"))) GTEST_SKIP() << "SKIPPED: no links here";
    makeLink(directory.file("kept/a"), directory.file("file"));
    EXPECT_TRUE(platform::removeDirectory(directory.file("directory"), true));
    EXPECT_TRUE(platform::removeFile(directory.file("file")));
    EXPECT_EQ("kept\nkept/a\n", listing(directory.str()));
}

TEST(Files, copyAFileWholeOrNotAtAll) {
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

TEST(Files, giveADirectoryAnotherName) {
    TempDir const directory;
    fs::create_directory(directory.file("a"));
    writeFile(directory.file("a/inner"), "content");
    EXPECT_TRUE(platform::moveDirectory(directory.file("a"), directory.file("b")));
    EXPECT_EQ("b\nb/inner\n", listing(directory.str()));
    EXPECT_EQ("content", readFile(directory.file("b/inner")));
}

TEST(Files, giveADirectoryNoNameThatIsTakenOrCannotBe) {
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
    EXPECT_EQ(isLink(directory.file("link")), hasLink);
    EXPECT_FALSE(fs::exists(directory.file("b")));
}

TEST(Files, leaveADirectoryOnItsFileSystem) {
    TempDir const directory;
    std::string const other = otherFileSystem(directory.str());
    if (other.empty()) GTEST_SKIP() << "SKIPPED: no second file system here";
    TempDir const there(other);
    fs::create_directory(directory.file("a"));
    EXPECT_FALSE(platform::moveDirectory(directory.file("a"), there.file("a")));
    EXPECT_EQ("a\n", listing(directory.str()) + listing(there.str()));
}

TEST(Files, lieInADirectory) {
    EXPECT_EQ("/data", platform::directoryOf("/data/a"));
    EXPECT_EQ("data", platform::directoryOf("data/a"));
    EXPECT_EQ(".", platform::directoryOf("a"));
}

TEST(Files, makePathsAbsoluteWithoutAskingForThem) {
    TempDir const directory;
    EXPECT_EQ(directory.file("b"), platform::absolutePath(directory.file("./a/../b")));
    EXPECT_EQ((fs::current_path() / "a").string(), platform::absolutePath("a"));
}
