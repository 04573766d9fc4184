#include <cubes/text/TRkFString.h>

#include "host/platform/Paths.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

using cubes::test::listing;
using cubes::test::readFile;
using cubes::test::TempDir;
using cubes::test::writeFile;

namespace {

std::string const delimiter(1, cubes::platform::pathDelimiter());

TRkFString changed(char const* path, void (TRkFString::*change)(char const*), char const* part) {
    TRkFString result(path);
    (result.*change)(part);
    return result;
}

// A directory "tree" with the files "a.skm" and "sub/b.skm".
void makeTree(TempDir const& directory) {
    TRkFString(directory.file("tree/sub")).MkDir();
    writeFile(directory.file("tree/a.skm"), "A");
    writeFile(directory.file("tree/sub/b.skm"), "B");
}

}

TEST(TRkFString, isConstructedFromEveryKindOfText) {
    EXPECT_STREQ("", TRkFString(static_cast<char const*>(nullptr)).c_str());
    EXPECT_STREQ("a/b", TRkFString("a/b").c_str());
    EXPECT_STREQ("a/b", TRkFString(std::string("a/b")).c_str());
    EXPECT_STREQ("a/b", TRkFString(TRkString("a/b")).c_str());
    EXPECT_STREQ("a/b", TRkFString(AnsiString("a/b")).c_str());
    EXPECT_EQ(TRkString("a/b"), static_cast<TRkString>(TRkFString("a/b")));
    EXPECT_EQ(3, TRkFString("a/b").Length());
    EXPECT_TRUE(TRkFString().IsEmpty());
}

TEST(TRkFString, isSplitAtTheLastDelimiterOfEitherKind) {
    struct {
        char const* text;
        char const* path;
        char const* file;
    } const cases[] = {
        {"/data/delta/a.skm", "/data/delta/", "a.skm"},
        {"c:\\data\\a.skm", "c:\\data\\", "a.skm"},
        {"data\\delta/a.skm", "data\\delta/", "a.skm"},
        {"data/delta\\a.skm", "data/delta\\", "a.skm"},
        {"a.skm", "", "a.skm"},
        {"/data/", "/data/", ""},
        {"/", "/", ""},
        {"", "", ""},
        {"a//b", "a//", "b"},
    };
    for (auto const& c : cases) {
        EXPECT_STREQ(c.path, TRkFString(c.text).Path().c_str()) << c.text;
        EXPECT_STREQ(c.file, TRkFString(c.text).File().c_str()) << c.text;
    }
}

TEST(TRkFString, namesADirectoryWithExactlyOneNativeDelimiterAtItsEnd) {
    struct {
        char const* text;
        std::string directory;
    } const cases[] = {
        {"/data/delta", "/data/delta" + delimiter},
        {"/data/delta/", "/data/delta" + delimiter},
        {"/data/delta\\", "/data/delta" + delimiter},
        {"/data/delta/\\//", "/data/delta" + delimiter},
        {"c:\\data\\delta", "c:\\data\\delta" + delimiter},
        {"data", "data" + delimiter},
        {"/", delimiter},
        {"\\", delimiter},
        {"", ""},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.directory, TRkFString::Directory(c.text).str()) << c.text;
        EXPECT_EQ(c.directory, TRkFString(TRkString(c.text), true).str()) << c.text;
        EXPECT_EQ(c.directory, TRkFString(AnsiString(c.text), true).str()) << c.text;
        EXPECT_EQ("", TRkFString::Directory(c.text).File().str()) << c.text;
    }
}

TEST(TRkFString, replacesItsDirectoryPart) {
    EXPECT_EQ("x" + delimiter + "a.skm", changed("/data/a.skm", &TRkFString::SetPath, "x").str());
    EXPECT_EQ("x" + delimiter + "a.skm", changed("a.skm", &TRkFString::SetPath, "x/").str());
    EXPECT_EQ("a.skm", changed("/data/a.skm", &TRkFString::SetPath, nullptr).str());
}

TEST(TRkFString, replacesItsName) {
    EXPECT_EQ("/d/b.skm", changed("/d/a.skm", &TRkFString::SetName, "b").str());
    EXPECT_EQ("/d/b.gz", changed("/d/a.tar.gz", &TRkFString::SetName, "b").str());
    EXPECT_EQ("/d/b", changed("/d/a", &TRkFString::SetName, "b").str());
    EXPECT_EQ("/d.e/b", changed("/d.e/a", &TRkFString::SetName, "b").str());
    EXPECT_EQ("/d/.skm", changed("/d/a.skm", &TRkFString::SetName, "").str());
    EXPECT_EQ("/d/", changed("/d/a", &TRkFString::SetName, nullptr).str());
}

TEST(TRkFString, replacesItsExtension) {
    EXPECT_EQ("/d/a.csv", changed("/d/a.skm", &TRkFString::SetExtension, ".csv").str());
    EXPECT_EQ("/d/a.csv", changed("/d/a", &TRkFString::SetExtension, ".csv").str());
    EXPECT_EQ("/d.e/a.csv", changed("/d.e/a", &TRkFString::SetExtension, ".csv").str());
    EXPECT_EQ("/d/a", changed("/d/a.skm", &TRkFString::SetExtension, nullptr).str());
}

TEST(TRkFString, leavesTheDirectoryWhenNameAndExtensionAreEmptied) {
    TRkFString path("/data/delta/a.skm");
    path.SetName("");
    path.SetExtension("");
    EXPECT_STREQ("/data/delta/", path.c_str());
}

TEST(TRkFString, existsAsAFileOrDirectory) {
    TempDir const directory;
    makeTree(directory);
    EXPECT_TRUE(TRkFString(directory.file("tree")).Exists());
    EXPECT_TRUE(TRkFString(directory.file("tree/a.skm")).Exists(""));
    EXPECT_FALSE(TRkFString(directory.file("tree/b.skm")).Exists());
    EXPECT_FALSE(TRkFString().Exists());
    EXPECT_FALSE(TRkFString().Exists(""));
}

TEST(TRkFString, searchesANameInItsDirectoryPart) {
    TempDir const directory;
    makeTree(directory);
    TRkFString const file(directory.file("tree/a.skm"));
    EXPECT_TRUE(file.Exists("sub"));
    EXPECT_TRUE(file.Exists("sub/b.skm"));
    EXPECT_FALSE(file.Exists("b.skm"));
    EXPECT_FALSE(TRkFString(directory.file("tree")).Exists("a.skm")) << "its directory part is the one above";
    EXPECT_TRUE(TRkFString::Directory(directory.file("tree")).Exists("a.skm"));
}

TEST(TRkFString, createsAllMissingLevelsOfADirectory) {
    TempDir const directory;
    TRkFString const root = TRkFString::Directory(directory.str());
    EXPECT_TRUE(root.MkDir("a/b/c"));
    EXPECT_TRUE(root.MkDir("a/b/c")) << "an existing directory is not a failure";
    EXPECT_TRUE(TRkFString::Directory(directory.file("d/e")).MkDir());
    EXPECT_EQ("a\na/b\na/b/c\nd\nd/e\n", listing(directory.str()));
}

TEST(TRkFString, createsNoDirectoryInPlaceOfAFile) {
    TempDir const directory;
    writeFile(directory.file("a"), "A");
    EXPECT_FALSE(TRkFString(directory.file("a")).MkDir());
    EXPECT_FALSE(TRkFString(directory.file("a/b")).MkDir());
    EXPECT_FALSE(TRkFString().MkDir());
    EXPECT_EQ("A", readFile(directory.file("a")));
}

TEST(TRkFString, removesADirectoryWithContentOnRequestOnly) {
    TempDir const directory;
    makeTree(directory);
    TRkFString const root = TRkFString::Directory(directory.str());
    EXPECT_FALSE(root.RmDir(false, "tree"));
    EXPECT_EQ("tree\ntree/a.skm\ntree/sub\ntree/sub/b.skm\n", listing(directory.str()));
    EXPECT_TRUE(root.RmDir(true, "tree"));
    EXPECT_EQ("", listing(directory.str()));
    EXPECT_TRUE(root.MkDir("tree"));
    EXPECT_TRUE(root.RmDir(false, "tree"));
    EXPECT_FALSE(root.RmDir(true, "tree")) << "it is gone";
}

TEST(TRkFString, doesNotRemoveAFileAsADirectory) {
    TempDir const directory;
    makeTree(directory);
    EXPECT_FALSE(TRkFString(directory.file("tree/a.skm")).RmDir(true));
    EXPECT_TRUE(TRkFString(directory.file("tree/a.skm")).Exists());
}

TEST(TRkFString, removesRegularFilesOnly) {
    TempDir const directory;
    makeTree(directory);
    TRkFString const tree = TRkFString::Directory(directory.file("tree"));
    EXPECT_TRUE(tree.RmFile("a.skm"));
    EXPECT_FALSE(tree.RmFile("a.skm"));
    EXPECT_FALSE(tree.RmFile("sub"));
    EXPECT_FALSE(tree.RmFile());
    EXPECT_TRUE(TRkFString(directory.file("tree/sub/b.skm")).RmFile());
    EXPECT_FALSE(TRkFString().RmFile());
    EXPECT_EQ("tree\ntree/sub\n", listing(directory.str()));
}

TEST(TRkFString, copiesAFileAndReplacesOnRequestOnly) {
    TempDir const directory;
    writeFile(directory.file("a"), "new");
    writeFile(directory.file("b"), "old and longer");
    TRkFString const source(directory.file("a"));
    EXPECT_FALSE(source.CopyTo(directory.file("b").c_str(), false));
    EXPECT_EQ("old and longer", readFile(directory.file("b")));
    EXPECT_TRUE(source.CopyTo(directory.file("b").c_str(), true));
    EXPECT_EQ("new", readFile(directory.file("b")));
    EXPECT_TRUE(source.CopyTo(directory.file("c").c_str(), false));
    EXPECT_EQ("new", readFile(directory.file("c")));
}

TEST(TRkFString, copiesADirectoryWithItsContent) {
    TempDir const directory;
    makeTree(directory);
    EXPECT_TRUE(TRkFString(directory.file("tree")).CopyTo(directory.file("copy").c_str(), false));
    EXPECT_EQ("A", readFile(directory.file("copy/a.skm")));
    EXPECT_EQ("B", readFile(directory.file("copy/sub/b.skm")));
}

TEST(TRkFString, rejectsMissingSourcesAndImpossibleTargets) {
    TempDir const directory;
    makeTree(directory);
    std::string const before = listing(directory.str());
    TRkFString const tree(directory.file("tree"));
    TRkFString const file(directory.file("tree/a.skm"));
    EXPECT_FALSE(file.CopyTo(nullptr, true));
    EXPECT_FALSE(file.CopyTo("", true));
    EXPECT_FALSE(file.CopyTo(file.c_str(), true)) << "onto itself";
    EXPECT_FALSE(file.CopyTo(directory.file("none/a.skm").c_str(), true)) << "into no directory";
    EXPECT_FALSE(tree.CopyTo(directory.file("tree/sub/tree").c_str(), true)) << "into itself";
    EXPECT_FALSE(TRkFString(directory.file("none")).CopyTo(directory.file("copy").c_str(), true));
    EXPECT_EQ(before, listing(directory.str()));
    EXPECT_EQ("A", readFile(file.str()));
}

TEST(TRkFString, recognisesTheSameFileByItsText) {
    struct {
        char const* first;
        char const* second;
        bool same;
    } const cases[] = {
        {"/data/a.skm", "/data/a.skm", true},
        {"/data/a.skm", "/data/./a.skm", true},
        {"/data/a.skm", "/data/delta/../a.skm", true},
        {"/data//a.skm", "/data/a.skm", true},
        {"/data\\a.skm", "/data/a.skm", true},
        {"a.skm", "./a.skm", true},
        {"x/../a.skm", "a.skm", true},
        {"/data/delta", "/data/delta/", true},
        {"/../data", "/data", true},
        {"/", "/", true},
        {"/data/a.skm", "/data/b.skm", false},
        {"/data/a.skm", "a.skm", false},
        {"/data/a", "/data/a.skm", false},
        {"", "", false},
        {"", "a.skm", false},
        {"a.skm", "", false},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.same, TRkFString(c.first).IsSameFile(c.second)) << c.first << ", " << c.second;
        EXPECT_EQ(c.same, TRkFString(c.second).IsSameFile(c.first)) << c.second << ", " << c.first;
    }
}

TEST(TRkFString, ignoresLetterCaseOfFilesOnWindowsOnly) {
    bool const caseIsIgnored = delimiter == "\\";
    EXPECT_EQ(caseIsIgnored, TRkFString("/data/A.skm").IsSameFile("/data/a.skm"));
}

TEST(TRkFString, comparesAsTextOtherwise) {
    EXPECT_EQ(TRkFString("a/b"), TRkFString(std::string("a/b")));
    EXPECT_FALSE(TRkFString("a/b") == TRkFString("a/./b"));
}
