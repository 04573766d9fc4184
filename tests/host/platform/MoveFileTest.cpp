#include "host/platform/MoveFile.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace cubes::test {
namespace {

namespace fs = std::filesystem;
using platform::moveFile;

TEST(MoveFile, renamesAFileOrADirectory) {
    TempDir const directory;
    writeFile(directory.file("a"), "content");
    EXPECT_TRUE(moveFile(directory.file("a"), directory.file("b")));
    fs::create_directory(directory.file("c"));
    fs::rename(directory.file("b"), directory.file("c/b"));
    EXPECT_TRUE(moveFile(directory.file("c"), directory.file("d")));
    EXPECT_EQ(listing(directory.str()), "d\nd/b\n");
    EXPECT_EQ(readFile(directory.file("d/b")), "content");
}

TEST(MoveFile, refusesATargetThatExists) {
    TempDir const directory;
    writeFile(directory.file("a"), "a");
    writeFile(directory.file("b"), "b");
    fs::create_directory(directory.file("c"));
    EXPECT_FALSE(moveFile(directory.file("a"), directory.file("b")));
    EXPECT_FALSE(moveFile(directory.file("a"), directory.file("c")));
    EXPECT_FALSE(moveFile(directory.file("a"), directory.file("a")));
    EXPECT_EQ(readFile(directory.file("a")), "a");
    EXPECT_EQ(readFile(directory.file("b")), "b");
}

TEST(MoveFile, isFalseForWhatCannotBeMoved) {
    TempDir const directory;
    writeFile(directory.file("a"), "a");
    EXPECT_FALSE(moveFile(directory.file("missing"), directory.file("b")));
    EXPECT_FALSE(moveFile(directory.file("a"), directory.file("missing/b")));
    EXPECT_FALSE(moveFile(directory.file("a"), ""));
    EXPECT_FALSE(moveFile("", directory.file("b")));
    EXPECT_EQ(listing(directory.str()), "a\n");
}

#ifndef _WIN32
bool isOtherFileSystem(std::string const& first, std::string const& second) {
    struct stat a {};
    struct stat b {};
    return stat(first.c_str(), &a) == 0 && stat(second.c_str(), &b) == 0 && a.st_dev != b.st_dev;
}

TEST(MoveFile, copiesAFileToAnotherFileSystemButNoDirectory) {
    TempDir const directory;
    if (!isOtherFileSystem(directory.str(), "/dev/shm")) GTEST_SKIP() << "SKIPPED: no second file system here";
    TempDir const other("/dev/shm");
    fs::path const target = other.file("a");
    writeFile(directory.file("a"), "content");
    EXPECT_TRUE(moveFile(directory.file("a"), target.string()));
    EXPECT_EQ(readFile(target.string()), "content");
    EXPECT_EQ(listing(directory.str()), "");
    fs::remove(target);
    fs::create_directory(directory.file("c"));
    EXPECT_FALSE(moveFile(directory.file("c"), target.string()));
    EXPECT_FALSE(fs::exists(target));
    EXPECT_EQ(listing(directory.str()), "c\n");
}
#endif

}
}
