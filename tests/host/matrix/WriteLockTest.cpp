#include "host/matrix/Samples.h"

#include "host/matrix/WriteLock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

using namespace cubes::test;

namespace {

// Whether `claim` holds in a process of its own, forked from this one.
bool holdsInAnotherProcess(std::function<bool()> const& claim) {
    pid_t const child = fork();
    if (child == 0) _exit(claim() ? 0 : 1);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class WriteLocks : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(save(numbered(3, 3), file)); }

    TempDir const directory;
    std::string const file = directory.file("a.skm");
};

}

TEST_F(WriteLocks, openingForWritingExcludesOthersThatOpenForWriting) {
    TRkMatrix const first = opened(file, lsReadWrite);
    ASSERT_TRUE(first.IsValid()) << first.Reason();
    for (int lock : {2, 3, 11}) {
        TRkMatrix const second = opened(file, lock);
        EXPECT_FALSE(second.IsValid()) << lock;
        EXPECT_NE(second.Reason().find(file), std::string::npos) << second.Reason();
        EXPECT_NE(second.Reason().find("locked"), std::string::npos) << second.Reason();
        EXPECT_TRUE(holdsInAnotherProcess([&] { return !opened(file, lock).IsValid(); })) << lock;
    }
    EXPECT_TRUE(holdsInAnotherProcess([&] { return !created(file, 3, 3, lsReadWrite).IsValid(); }));
}

TEST_F(WriteLocks, readingIsNeverExcluded) {
    TRkMatrix const writer = opened(file, lsReadWrite);
    for (int lock : {0, 1, 4, 8}) {
        EXPECT_TRUE(opened(file, lock).IsValid()) << lock;
        EXPECT_TRUE(holdsInAnotherProcess([&] { return opened(file, lock).IsValid(); })) << lock;
    }
    TRkMatrix const readers[] = {opened(file, lsRead), opened(file, lsRead)};
    EXPECT_TRUE(readers[0].IsValid() && readers[1].IsValid());
}

TEST_F(WriteLocks, theLockEndsWithTheObject) {
    {
        TRkMatrix const first = opened(file, lsReadWrite);
        ASSERT_TRUE(first.IsValid());
    }
    EXPECT_TRUE(holdsInAnotherProcess([&] { return opened(file, lsReadWrite).IsValid(); }));
    EXPECT_TRUE(opened(file, lsReadWrite).IsValid());
}

TEST_F(WriteLocks, theLockEndsWithItsProcess) {
    int ready[2], done[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(done), 0);
    pid_t const child = fork();
    if (child == 0) {
        TRkMatrix const held = opened(file, lsReadWrite);
        char byte = held.IsValid() ? 'y' : 'n';
        bool const told = write(ready[1], &byte, 1) == 1;
        // Ends without running destructors, like a process that is killed.
        _exit(told && read(done[0], &byte, 1) == 1 ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'y');
    EXPECT_FALSE(opened(file, lsReadWrite).IsValid());
    EXPECT_FALSE(created(file, 3, 3, lsReadWrite).IsValid());
    EXPECT_TRUE(opened(file, lsRead).IsValid());
    EXPECT_EQ(write(done[1], &byte, 1), 1);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(opened(file, lsReadWrite).IsValid());
    for (int end : {ready[0], ready[1], done[0], done[1]}) close(end);
}

TEST_F(WriteLocks, aProcessMaySaveOntoAFileThatItHolds) {
    TRkMatrix holder = opened(file, lsReadWrite);
    EXPECT_TRUE(save(times(3, 3), file, lsReadWrite));
    EXPECT_TRUE(save(holder, file, lsChanged));
    EXPECT_EQ(difference(opened(file), numbered(3, 3)), "");
}

TEST_F(WriteLocks, theLockOutlivesTheReplacementOfTheFile) {
    TRkMatrix const holder = opened(file, lsReadWrite);
    ASSERT_TRUE(save(times(3, 3), file));
    ASSERT_TRUE(save(times(3, 3), file, lsReadWrite));
    EXPECT_FALSE(opened(file, lsReadWrite).IsValid());
    EXPECT_TRUE(holdsInAnotherProcess([&] { return !opened(file, lsReadWrite).IsValid(); }));
    std::filesystem::remove(file);
    EXPECT_TRUE(holdsInAnotherProcess([&] { return !created(file, 3, 3, lsReadWrite).IsValid(); }));
}

TEST_F(WriteLocks, theLockGoesOverToAnObjectThatSavesWhileItsHolderGoes) {
    auto holder = std::make_unique<TRkMatrix>(opened(file, lsReadWrite));
    TRkMatrix const saver = created(file, 3, 3, lsReadWrite);
    ASSERT_TRUE(saver.IsValid()) << saver.Reason();
    holder.reset();
    EXPECT_TRUE(holdsInAnotherProcess([&] { return !opened(file, lsReadWrite).IsValid(); }));
}

TEST_F(WriteLocks, creatingForWritingExcludesOthersThatWrite) {
    {
        TRkMatrix const creator = created(file, 3, 3, lsReadWrite);
        ASSERT_TRUE(creator.IsValid()) << creator.Reason();
        EXPECT_FALSE(created(file, 3, 3, lsWrite).IsValid());
        EXPECT_FALSE(opened(file, lsReadWrite).IsValid());
        EXPECT_TRUE(opened(file, lsRead).IsValid());
        EXPECT_TRUE(holdsInAnotherProcess([&] { return !created(file, 3, 3, lsWrite).IsValid(); }));
    }
    EXPECT_TRUE(created(file, 3, 3, lsWrite).IsValid());
}

TEST_F(WriteLocks, creatingWithoutTheWriteBitAsksForNoLock) {
    TRkMatrix const holder = opened(file, lsReadWrite);
    EXPECT_TRUE(holdsInAnotherProcess([&] { return save(times(3, 3), file); }));
    EXPECT_EQ(difference(opened(file), times(3, 3)), "");
    EXPECT_EQ(difference(holder, numbered(3, 3)), "");
}

TEST_F(WriteLocks, otherFilesOfTheDirectoryAreFree) {
    ASSERT_TRUE(save(numbered(3, 3), directory.file("b.skm")));
    TRkMatrix const first = opened(file, lsReadWrite);
    EXPECT_TRUE(opened(directory.file("b.skm"), lsReadWrite).IsValid());
    EXPECT_TRUE(holdsInAnotherProcess([&] { return opened(directory.file("b.skm"), lsReadWrite).IsValid(); }));
}

TEST_F(WriteLocks, aFileIsTheSameByWhateverPath) {
    std::filesystem::create_directory_symlink(directory.str(), directory.file("link"));
    TRkMatrix const first = opened(file, lsReadWrite);
    for (char const* path : {"./a.skm", "link/a.skm", "link/../a.skm"})
        EXPECT_FALSE(opened(directory.file(path), lsReadWrite).IsValid()) << path;
}

TEST_F(WriteLocks, theLockFileAppearsOnlyForALock) {
    opened(file, lsRead);
    created(file, 3, 3, lsNone);
    EXPECT_EQ(listing(directory.str()), "a.skm\n");
    opened(file, lsWrite);
    EXPECT_EQ(listing(directory.str()), ".cubes-lock\na.skm\n");
    EXPECT_EQ(std::filesystem::file_size(directory.file(".cubes-lock")), 0u);
    EXPECT_TRUE(cubes::matrix::isLockName(".cubes-lock"));
    EXPECT_FALSE(cubes::matrix::isLockName("a.skm"));
}

TEST_F(WriteLocks, aMovedObjectTakesItsLockAlong) {
    TRkMatrix first = opened(file, lsReadWrite);
    TRkMatrix second = std::move(first);
    EXPECT_FALSE(opened(file, lsReadWrite).IsValid());
    second = TRkMatrix();
    EXPECT_TRUE(opened(file, lsReadWrite).IsValid());
}

TEST_F(WriteLocks, anObjectThatIsNotValidHoldsNoLock) {
    writeFile(directory.file("text"), "text");
    TRkMatrix const broken = opened(directory.file("text"), lsReadWrite);
    EXPECT_FALSE(broken.IsValid());
    EXPECT_TRUE(save(numbered(2, 2), directory.file("text"), lsReadWrite));
}
