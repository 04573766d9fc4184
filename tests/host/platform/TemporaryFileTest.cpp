#include "host/platform/TemporaryFile.h"

#include "host/platform/FileTesting.h"
#include "host/platform/Files.h"
#include "support/ChildTask.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
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
    for (char const* name : {".a.skm.0123456789abcdef.cubes-tmp", ".a.0123456789abcdef.cubes-tmp",
             ".a.skm.0123456789abcdef.old.cubes-tmp", ".a.skm.0123456789abcdef.cubes-old"})
        EXPECT_TRUE(isTemporaryName(name)) << name;
    for (char const* name : {"a.skm", "a.cubes-tmp", ".cubes-lock", ".a.cubes-tmp.skm", "", ".cubes-tmp",
             ".a.skm.12-0.cubes-tmp", ".a.skm.0123456789abcde.cubes-tmp", ".a.skm.0123456789abcdeg.cubes-tmp",
             ".a.skm.0123456789ABCDEF.cubes-tmp", "a.skm.0123456789abcdef.cubes-tmp", ".0123456789abcdef.cubes-tmp",
             "..0123456789abcdef.cubes-tmp", ".a_0123456789abcdef.cubes-tmp", ".a.0123456789abcdef.x.cubes-tmp"})
        EXPECT_FALSE(isTemporaryName(name)) << name;
}

TEST(TemporaryFile, hasItsTargetInItsName) {
    auto const target = cubes::test::nativePath("/d/a.skm");
    EXPECT_EQ(targetOfTemporary(temporaryPath(target)), target);
    EXPECT_EQ(targetOfTemporary(temporaryPath("a.skm")), "a.skm");
    EXPECT_EQ(targetOfTemporary(oldPath(target)), target);
    EXPECT_EQ(targetOfTemporary(".a.skm.0123456789abcdef.cubes-old"), "a.skm");
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

TEST(TemporaryFile, isANewFileAfterAnotherProgramHasReplacedIt) {
    TempDir const directory;
    writeFile(directory.file("a"), "old");
    TemporaryFile file(directory.file("a"));
    writeFile(directory.file("b"), "new");
    EXPECT_TRUE(renameFile(directory.file("b"), file.path()));
    file.reopen();
    EXPECT_EQ(file.file().size(), 3u);
    file.commit();
    EXPECT_EQ(readFile(directory.file("a")), "new");
    EXPECT_EQ(listing(directory.str()), "a\n");
}

namespace {

void setDaysBack(std::string const& path, int days) {
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(24 * days + 1));
}

cubes::test::ChildTask const writing(
    "write a file", [](int, std::string const& path) { TemporaryFile const file(path); });

// As an interrupted process leaves it.
std::string leftover(std::string const& target, int days) {
    auto const path = temporaryPath(target);
    writeFile(path, "half");
    setDaysBack(path, days);
    return path;
}

}

namespace {

namespace fs = std::filesystem;

constexpr fs::perms ownerWrites = fs::perms::owner_read | fs::perms::owner_write;
constexpr fs::perms groupReads = ownerWrites | fs::perms::group_read;
constexpr fs::perms allRead = groupReads | fs::perms::others_read;

fs::perms rightsOf(std::string const& path) {
    return fs::status(path).permissions();
}

bool hasRights(TempDir const& directory) {
    writeFile(directory.file("rights"), "");
    fs::permissions(directory.file("rights"), fs::perms::owner_read);
    return rightsOf(directory.file("rights")) == fs::perms::owner_read;
}

}

#define CUBES_REQUIRE_RIGHTS(directory)                                                                                \
    if (!hasRights(directory)) GTEST_SKIP() << "SKIPPED: files are for all or for none to read here"

TEST(TemporaryFile, keepsTheRightsOfTheFileThatItReplaces) {
    TempDir const directory;
    CUBES_REQUIRE_RIGHTS(directory);
    auto const target = directory.file("a");
    writeFile(target, "old");
    for (auto const rights : {ownerWrites, groupReads, allRead | fs::perms::group_write, fs::perms::owner_read}) {
        fs::permissions(target, rights);
        TemporaryFile file(target);
        EXPECT_EQ(rightsOf(file.path()) & ~(rights | fs::perms::owner_write), fs::perms::none);
        file.file().writeAt(0, bytesOf("new"));
        file.commit();
        EXPECT_EQ(rightsOf(target), rights);
    }
}

TEST(TemporaryFile, copiesAFileWithItsRightsUnlessItReplacesOne) {
    TempDir const directory;
    CUBES_REQUIRE_RIGHTS(directory);
    writeFile(directory.file("private"), "content");
    fs::permissions(directory.file("private"), ownerWrites);
    writeFile(directory.file("old"), "old");
    fs::permissions(directory.file("old"), groupReads);
    replaceByCopy(directory.file("private"), directory.file("new"));
    replaceByCopy(directory.file("private"), directory.file("old"));
    EXPECT_EQ(rightsOf(directory.file("new")), ownerWrites);
    EXPECT_EQ(rightsOf(directory.file("old")), groupReads);
    EXPECT_EQ(readFile(directory.file("old")), "content");
}

TEST(Leftover, ofADayAgoIsRemovedByTheNextProcessThatWritesThere) {
    TempDir const directory;
    auto const old = leftover(directory.file("a"), 1);
    auto const recent = leftover(directory.file("b"), 0);
    { TemporaryFile const first(directory.file("c")); }
    EXPECT_FALSE(exists(old));
    EXPECT_TRUE(exists(recent));
    auto const later = leftover(directory.file("a"), 1);
    { TemporaryFile const second(directory.file("c")); }
    EXPECT_TRUE(exists(later)) << "searched again by the same process";
}

TEST(Leftover, isSearchedOnceADayInADirectoryWithALockFile) {
    TempDir const directory;
    writeFile(directory.file(lockFileName), "");
    auto const old = leftover(directory.file("a"), 1);
    auto const write = [&] { EXPECT_EQ(writing.inProcesses(1, directory.file("c")), 1); };
    write();
    EXPECT_TRUE(exists(old));
    setDaysBack(directory.file(lockFileName), 1);
    write();
    EXPECT_FALSE(exists(old));
    auto const next = leftover(directory.file("a"), 1);
    write();
    EXPECT_TRUE(exists(next));
}

TEST(Leftover, isNotRemovedWhileItsWriterLives) {
    TempDir const directory;
    TemporaryFile written(directory.file("a"));
    writeFile(directory.file("source"), "old content");
    TemporaryFile copied(directory.file("b"));
    copied.copyFrom(directory.file("source"));
    TemporaryFile linked(directory.file("c"));
    linked.linkTo(directory.file("source"));
    for (auto const* const file : {&written, &copied, &linked}) {
        setDaysBack(file->path(), 2);
        EXPECT_FALSE(removeLeftover(file->path())) << file->path();
    }
    linked.publish();
    EXPECT_EQ(readFile(directory.file("c")), "old content");
    written.leave();
    written.file().close();
    setDaysBack(written.path(), 2);
    EXPECT_TRUE(removeLeftover(written.path()));
}

TEST(Leftover, isNoOldFileWhichMayBeTheOnlyCopy) {
    TempDir const directory;
    writeFile(directory.file("a"), "old");
    setDaysBack(directory.file("a"), 300);
    std::string kept;
    {
        TemporaryFile old(directory.file("a"), TemporaryFile::Purpose::keepOld);
        old.linkTo(directory.file("a"));
        kept = old.path();
        EXPECT_TRUE(isOldName(std::filesystem::path(kept).filename().string())) << kept;
        old.leave();
    }
    writeFile(directory.file("new"), "new");
    EXPECT_TRUE(renameFile(directory.file("new"), directory.file("a")));
    EXPECT_FALSE(removeLeftover(kept));
    EXPECT_EQ(writing.inProcesses(1, directory.file("b")), 1);
    EXPECT_EQ(readFile(kept), "old");
}

TEST(Leftover, isNoFileOfAnotherName) {
    TempDir const directory;
    for (char const* name : {"a.odm", ".a.12-0.cubes-tmp", ".cubes-tmp"}) {
        writeFile(directory.file(name), "other");
        setDaysBack(directory.file(name), 2);
    }
    EXPECT_EQ(writing.inProcesses(1, directory.file("b")), 1);
    EXPECT_EQ(listing(directory.str()), ".a.12-0.cubes-tmp\n.cubes-tmp\na.odm\n");
}

TEST(TemporaryFile, showsThatItsTargetIsBeingReplaced) {
    TempDir const directory;
    std::string const longest(255, 'n');
    auto const held = temporaryPath(directory.file("b"));
    writeFile(held, "nobody writes it");
    {
        TemporaryFile const first(directory.file("a"));
        TemporaryFile const second(directory.file(longest));
        for (auto const& name : {std::string("a"), longest}) EXPECT_TRUE(isBeingReplaced(directory.file(name))) << name;
        for (char const* name : {"b", "c", "a.0"}) EXPECT_FALSE(isBeingReplaced(directory.file(name))) << name;
    }
    EXPECT_FALSE(isBeingReplaced(directory.file("a")));
}

TEST(Leftover, isNothingButAFile) {
    TempDir const directory;
    auto const folder = temporaryPath(directory.file("a"));
    std::filesystem::create_directory(folder);
#ifndef _WIN32
    // A directory cannot be dated there.
    setDaysBack(folder, 2);
#endif
    EXPECT_FALSE(removeLeftover(folder));
    EXPECT_TRUE(isDirectory(folder));
    EXPECT_FALSE(removeLeftover(directory.file("missing")));
}
