#include "host/platform/TemporaryFile.h"

#include "host/platform/FileTesting.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <system_error>

using namespace cubes::platform;
using cubes::test::bytesOf;
using cubes::test::listing;
using cubes::test::readFile;
using cubes::test::TempDir;
using cubes::test::writeFile;

TEST(TemporaryFile, replacesTheTargetOrLeavesNothing) {
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

TEST(TemporaryFile, leavesNothingWhenItIsAnotherNameOfItsTarget) {
    TempDir const directory;
    writeFile(directory.file("a"), "content");
    TemporaryFile temporary(directory.file("a"));
    temporary.file().close();
    std::filesystem::remove(temporary.path());
    std::error_code noLinks;
    std::filesystem::create_hard_link(directory.file("a"), temporary.path(), noLinks);
    if (noLinks) GTEST_SKIP() << "SKIPPED: no second names for files here";
    temporary.publish();
    EXPECT_EQ(listing(directory.str()), "a\n");
    EXPECT_EQ(readFile(directory.file("a")), "content");
}

TEST(TemporaryFile, leavesRoomInItsNameForLongOnes) {
    TempDir const directory;
    std::string const longest(255, 'n');
    TemporaryFile file(directory.file(longest));
    file.publish();
    EXPECT_EQ(listing(directory.str()), longest + "\n");
}

TEST(TemporaryFile, isRecognisedByItsName) {
    for (char const* name : {".a.skm.0123456789abcdef.cubes-tmp", ".a.skm.12-0.cubes-tmp", ".cubes-tmp"})
        EXPECT_TRUE(isTemporaryName(name)) << name;
    for (char const* name : {"a.skm", "a.cubes-tmp", ".cubes-lock", ".a.cubes-tmp.skm", ""})
        EXPECT_FALSE(isTemporaryName(name)) << name;
}

TEST(TemporaryFile, hasItsTargetInItsName) {
    auto const target = cubes::test::nativePath("/d/a.skm");
    EXPECT_EQ(targetOfTemporary(temporaryPath(target)), target);
    EXPECT_EQ(targetOfTemporary(temporaryPath("a.skm")), "a.skm");
    for (auto const* const other : {"a.skm", ".cubes-tmp", ".a.cubes-tmp", ""})
        EXPECT_EQ(targetOfTemporary(other), other);
}

TEST(TemporaryFile, hasANewNameEachTime) {
    std::set<std::string> names;
    for (int i = 0; i < 1000; ++i) names.insert(temporaryPath("directory/a.skm"));
    EXPECT_EQ(names.size(), 1000u);
    for (std::string const& name : names) EXPECT_TRUE(isTemporaryName(name.substr(name.find(".a.skm")))) << name;
}

TEST(TemporaryFile, isCommittedOrLeavesTheTargetUnchanged) {
    TempDir const directory;
    TemporaryFile file(directory.file("a"));
    file.file().writeAt(0, bytesOf("new"));
    file.commit();
    EXPECT_EQ(readFile(directory.file("a")), "new");
    std::filesystem::create_directory(directory.file("d"));
    {
        TemporaryFile refused(directory.file("d"));
        EXPECT_THROW(refused.commit(), std::system_error);
    }
    EXPECT_EQ(listing(directory.str()), "a\nd\n");
}

TEST(TemporaryFile, isCommittedByItsNameWhenAnotherProgramWroteIt) {
    TempDir const directory;
    writeFile(directory.file("a"), "old");
    std::string const written = temporaryPath(directory.file("a"));
    EXPECT_THROW(commitFile(written, directory.file("a")), std::system_error);
    EXPECT_EQ(readFile(directory.file("a")), "old");
    writeFile(written, "new");
    commitFile(written, directory.file("a"));
    EXPECT_EQ(readFile(directory.file("a")), "new");
    EXPECT_EQ(listing(directory.str()), "a\n");
}
