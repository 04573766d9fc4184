// Files of entries are copied and moved completely or not at all, on one file system and between two.

#include "catalogue/EntryFile.h"

#include <cubes/matrix/MatrixStorage.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>

#include "host/matrix/FailingSystem.h"
#include "support/TempDir.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

using catalogue::copyMatrixFile;
using catalogue::moveMatrixFile;
using Placing = bool (*)(std::string const& source, std::string const& target);

bool copy(std::string const& source, std::string const& target) {
    return copyMatrixFile(source, target, lsReadWrite);
}

std::string contentOf(std::string const& path) {
    return fs::exists(path) ? readFile(path) : "(none)";
}

enum class Place { here, onAnotherFileSystem };

std::string nameOf(Place place) {
    return place == Place::here ? "here" : "onAnotherFileSystem";
}

void PrintTo(Place place, std::ostream* out) {
    *out << nameOf(place);
}

/// A source in one directory, a target in another.
class EntryFile : public testing::TestWithParam<Place> {
protected:
    void SetUp() override {
        std::string const other = otherFileSystem(here_.str());
        if (GetParam() == Place::here)
            there_.emplace();
        else if (!other.empty())
            there_.emplace(other);
        else
            GTEST_SKIP() << "SKIPPED: no second file system here";
    }

    std::string source() const { return here_.file("a.odm"); }
    std::string target() const { return there_->file("b.odm"); }
    std::string state() const { return filesIn(here_.str()) + filesIn(there_->str()); }
    void write() const {
        writeFile(source(), "new");
        writeFile(target(), "old");
    }
    bool isWhole() const {
        std::string const placed = contentOf(target());
        return placed == "new" || (placed == "old" && contentOf(source()) == "new");
    }
    /// Makes each step fail in turn, until none is left.
    void failEachStep(Placing place, int error);
    /// The flushes and renames of placing a file, under a rule for the target's directory.
    std::string steps(Placing place, Durability durability) const {
        setMatrixStorage(there_->str(), {Storage::plain, durability});
        write();
        FailingSystem const system;
        EXPECT_TRUE(place(source(), target()));
        return system.settled();
    }

    TempDir const here_;
    std::optional<TempDir> there_;
};

void EntryFile::failEachStep(Placing place, int error) {
    int steps = 0;
    for (bool failed = true; failed; ++steps) {
        ASSERT_LT(steps, 50);
        write();
        bool done = false;
        {
            FailingSystem const system(steps + 1, error);
            done = place(source(), target());
            failed = system.hasFailed();
        }
        EXPECT_EQ(done, !failed) << "step " << steps + 1;
        EXPECT_TRUE(isWhole()) << "step " << steps + 1;
        EXPECT_EQ(filesIn(there_->str()), "b.odm\n") << "step " << steps + 1;
    }
    EXPECT_GT(steps, 3);
}

INSTANTIATE_TEST_SUITE_P(, EntryFile, testing::Values(Place::here, Place::onAnotherFileSystem),
    [](auto const& place) { return nameOf(place.param); });

TEST_P(EntryFile, replacesTheTargetWhenItIsMoved) {
    write();
    EXPECT_TRUE(moveMatrixFile(source(), target()));
    EXPECT_EQ(contentOf(target()), "new");
    EXPECT_EQ(state(), "b.odm\n");
}

TEST_P(EntryFile, isMovedAndCopiedToAFreeName) {
    writeFile(source(), "new");
    EXPECT_TRUE(copy(source(), target()));
    EXPECT_EQ(state(), "a.odm\nb.odm\n");
    fs::remove(target());
    EXPECT_TRUE(moveMatrixFile(source(), target()));
    EXPECT_EQ(contentOf(target()), "new");
    EXPECT_EQ(state(), "b.odm\n");
}

TEST_P(EntryFile, isNotLostInAMoveWhicheverStepFails) {
    for (int const error : {ENOSPC, EIO}) failEachStep(moveMatrixFile, error);
}

TEST_P(EntryFile, isNotLostInACopyWhicheverStepFails) {
    for (int const error : {ENOSPC, EIO}) {
        failEachStep(copy, error);
        EXPECT_EQ(contentOf(source()), "new");
    }
}

TEST_P(EntryFile, cannotBeADirectoryAndReplacesNone) {
    fs::create_directory(source());
    writeFile(source() + "/inner", "precious");
    writeFile(target(), "old");
    EXPECT_FALSE(moveMatrixFile(source(), target()));
    EXPECT_FALSE(copy(source(), target()));
    EXPECT_FALSE(moveMatrixFile(source(), there_->file("free.odm")));
    EXPECT_FALSE(copy(source(), there_->file("free.odm")));
    EXPECT_FALSE(moveMatrixFile(target(), source()));
    EXPECT_FALSE(copy(target(), source()));
    EXPECT_EQ(contentOf(target()), "old");
    EXPECT_EQ(state(), "a.odm\na.odm/inner\nb.odm\n");
}

TEST_P(EntryFile, keepsTheTargetWhenTheSourceIsMissing) {
    writeFile(target(), "old");
    EXPECT_FALSE(moveMatrixFile(source(), target()));
    EXPECT_FALSE(copy(source(), target()));
    EXPECT_EQ(contentOf(target()), "old");
    EXPECT_FALSE(moveMatrixFile(target(), there_->file("none/b.odm")));
    EXPECT_FALSE(copy(target(), there_->file("none/b.odm")));
    EXPECT_EQ(state(), "b.odm\n");
}

TEST_P(EntryFile, survivesAPowerFailureIfTheTargetsRuleRequiresIt) {
    bool const isHere = GetParam() == Place::here;
    EXPECT_EQ(steps(copy, Durability::full), "flush rename flush-directory");
    EXPECT_EQ(steps(moveMatrixFile, Durability::full),
        isHere ? "flush rename flush-directory flush-directory" : "flush flush rename flush-directory flush-directory");
    EXPECT_EQ(steps(copy, Durability::process), "rename");
    EXPECT_EQ(steps(moveMatrixFile, Durability::process), "rename");
}

}
}
