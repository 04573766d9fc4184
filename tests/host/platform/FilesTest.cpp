#include "host/platform/Files.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;
namespace platform = cubes::platform;
using cubes::test::listing;
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
    fs::create_directory_symlink(directory.file("kept"), directory.file("directory"));
    fs::create_symlink(directory.file("kept/a"), directory.file("file"));
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

TEST(Files, makePathsAbsoluteWithoutAskingForThem) {
    EXPECT_EQ("/data/b", platform::absolutePath("/data/./a/../b"));
    EXPECT_EQ((fs::current_path() / "a").string(), platform::absolutePath("a"));
}
