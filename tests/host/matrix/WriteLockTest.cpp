#include "host/matrix/Samples.h"

#include "host/matrix/WriteLock.h"
#include "host/platform/File.h"
#include "host/platform/NarrowText.h"
#include "support/ChildTask.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

using namespace cubes::test;

namespace {

bool isLocked(TRkMatrix const& matrix) {
    return !matrix.IsValid() && matrix.Reason().find("locked") != std::string::npos;
}

// What a process can try with a file: "open", "create" or "save", with a lock state.
TRkMatrix tried(std::string const& action, int lock, std::string const& file) {
    if (action == "open") return opened(file, lock);
    TRkMatrix target = created(file, 3, 3, lock);
    if (action == "save" && target.IsValid()) target.AssignFrom(times(3, 3));
    return target;
}

bool is(std::string const& expected, TRkMatrix const& matrix) {
    return expected == "done" ? matrix.IsValid() : isLocked(matrix);
}

// The argument is the expected result and the attempt: "done open 1 a.skm", "refused open 3 a.skm". A process that
// could not try exits with an error whatever was expected.
ChildTask const trial("trial", [](int, std::string const& attempt) {
    std::istringstream words(attempt);
    std::string expected, action, file;
    int lock = 0;
    std::getline(words >> expected >> action >> lock >> std::ws, file);
    leaveAtOnce(is(expected, tried(action, lock, file)));
});

bool isElsewhere(std::string const& expected, std::string const& action, int lock, std::string const& file) {
    return trial.inProcesses(1, expected + " " + action + " " + std::to_string(lock) + " " + file) == 1;
}

// The argument is the file. Ends without running destructors, like a killed process.
ChildTask const holding("holding", [](int, std::string const& file) {
    TRkMatrix const held = opened(file, lsReadWrite);
    bool const isHeld = held.IsValid() && isElsewhere("refused", "open", lsReadWrite, file) &&
                        isElsewhere("refused", "create", lsReadWrite, file) &&
                        isElsewhere("done", "open", lsRead, file);
    leaveAtOnce(isHeld);
});

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
        EXPECT_TRUE(isLocked(second)) << lock << ": " << second.Reason();
        EXPECT_NE(second.Reason().find(file), std::string::npos) << second.Reason();
        EXPECT_TRUE(isElsewhere("refused", "open", lock, file)) << lock;
    }
    EXPECT_TRUE(isElsewhere("refused", "create", lsReadWrite, file));
}

TEST_F(WriteLocks, readingIsNeverBlocked) {
    TRkMatrix const writer = opened(file, lsReadWrite);
    for (int lock : {0, 1, 4, 8}) {
        EXPECT_TRUE(opened(file, lock).IsValid()) << lock;
        EXPECT_TRUE(isElsewhere("done", "open", lock, file)) << lock;
    }
    TRkMatrix const readers[] = {opened(file, lsRead), opened(file, lsRead)};
    EXPECT_TRUE(readers[0].IsValid() && readers[1].IsValid());
}

TEST_F(WriteLocks, theLockEndsWithTheObject) {
    {
        TRkMatrix const first = opened(file, lsReadWrite);
        ASSERT_TRUE(first.IsValid());
    }
    EXPECT_TRUE(isElsewhere("done", "open", lsReadWrite, file));
    EXPECT_TRUE(opened(file, lsReadWrite).IsValid());
}

TEST_F(WriteLocks, theLockEndsWithItsProcess) {
    EXPECT_EQ(holding.inProcesses(1, file), 1);
    EXPECT_TRUE(opened(file, lsReadWrite).IsValid());
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
    EXPECT_TRUE(isElsewhere("refused", "open", lsReadWrite, file));
    std::filesystem::remove(file);
    EXPECT_TRUE(isElsewhere("refused", "create", lsReadWrite, file));
}

TEST_F(WriteLocks, theLockPassesToAnObjectThatSavesWhenItsHolderIsDestroyed) {
    auto holder = std::make_unique<TRkMatrix>(opened(file, lsReadWrite));
    TRkMatrix const saver = created(file, 3, 3, lsReadWrite);
    ASSERT_TRUE(saver.IsValid()) << saver.Reason();
    holder.reset();
    EXPECT_TRUE(isElsewhere("refused", "open", lsReadWrite, file));
}

TEST_F(WriteLocks, creatingForWritingExcludesOthersThatWrite) {
    {
        TRkMatrix const creator = created(file, 3, 3, lsReadWrite);
        ASSERT_TRUE(creator.IsValid()) << creator.Reason();
        EXPECT_FALSE(created(file, 3, 3, lsWrite).IsValid());
        EXPECT_FALSE(opened(file, lsReadWrite).IsValid());
        EXPECT_TRUE(opened(file, lsRead).IsValid());
        EXPECT_TRUE(isElsewhere("refused", "create", lsWrite, file));
    }
    EXPECT_TRUE(created(file, 3, 3, lsWrite).IsValid());
}

TEST_F(WriteLocks, creatingWithoutTheWriteBitTakesNoLock) {
    TRkMatrix const holder = opened(file, lsReadWrite);
    EXPECT_TRUE(isElsewhere("done", "save", lsNone, file));
    EXPECT_EQ(difference(opened(file), times(3, 3)), "");
    EXPECT_EQ(difference(holder, numbered(3, 3)), "");
}

TEST_F(WriteLocks, otherFilesOfTheDirectoryAreNotLocked) {
    ASSERT_TRUE(save(numbered(3, 3), directory.file("b.skm")));
    TRkMatrix const first = opened(file, lsReadWrite);
    EXPECT_TRUE(opened(directory.file("b.skm"), lsReadWrite).IsValid());
    EXPECT_TRUE(isElsewhere("done", "open", lsReadWrite, directory.file("b.skm")));
}

TEST_F(WriteLocks, aFileIsLockedByAnyPath) {
    std::filesystem::create_directory(directory.file("sub"));
    DirectoryLink const link(directory.file("sub"), directory.file("link"));
    DirectoryLink const here(directory.str(), directory.file("here"));
    TRkMatrix const first = opened(file, lsReadWrite);
    for (char const* const path : {"./a.skm", "link/../a.skm", "here/a.skm"}) {
        TRkMatrix const second = opened(directory.file(path), lsReadWrite);
        EXPECT_TRUE(isLocked(second)) << path << ": " << second.Reason();
    }
}

TEST_F(WriteLocks, theLockFileIsCreatedByTheFirstLock) {
    opened(file, lsRead);
    created(file, 3, 3, lsNone);
    EXPECT_EQ(listing(directory.str()), "a.skm\n");
    opened(file, lsWrite);
    EXPECT_EQ(listing(directory.str()), ".cubes-lock\na.skm\n");
    EXPECT_EQ(std::filesystem::file_size(directory.file(".cubes-lock")), 0u);
    EXPECT_TRUE(cubes::matrix::isLockName(".cubes-lock"));
    EXPECT_FALSE(cubes::matrix::isLockName("a.skm"));
}

TEST_F(WriteLocks, theLockedByteIsComputedFromTheNameInUtf8) {
    std::string const name = directory.file(cubes::platform::fromUtf8("zürich.skm"));
    ASSERT_TRUE(save(numbered(3, 3), name));
    // Half of the XXH3 of "zürich.skm" in UTF-8.
    constexpr std::uint64_t position = 8172326146006134247;
    auto const held = [&] { return !cubes::platform::ByteLock::tryTake(directory.file(".cubes-lock"), position); };
    EXPECT_FALSE(held());
    TRkMatrix const writer = opened(name, lsReadWrite);
    ASSERT_TRUE(writer.IsValid()) << writer.Reason();
    EXPECT_TRUE(held());
}

TEST_F(WriteLocks, aMovedObjectKeepsItsLock) {
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
