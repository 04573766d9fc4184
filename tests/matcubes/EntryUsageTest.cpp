#include "matcubes/MatCubesTest.h"

namespace cubes::test {
namespace {

class EntryUsage : public MatCubesTest {
protected:
    void SetUp() override {
        MatCubesTest::SetUp();
        if (!IsSkipped()) cubes().Add("Base", 1, 1, 1, 1, false);
    }

    std::string counter() { return read("select \"usageCounter\" from " + table()); }
    void setCounter(std::string const& value) {
        project().execute("update " + table() + " set \"usageCounter\" = " + value);
    }
};

CUBES_BOTH_BACKENDS(EntryUsage);

TEST_P(EntryUsage, isRaisedAndLoweredByOne) {
    EXPECT_TRUE(cubes().incUsage(1, 1, 1, 1, 1));
    EXPECT_TRUE(cubes().incUsage(1, 1, 1, 1, 1));
    EXPECT_EQ(counter(), "2\n");
    EXPECT_TRUE(cubes().decUsage(1, 1, 1, 1, 1));
    EXPECT_EQ(counter(), "1\n");
}

TEST_P(EntryUsage, isNotLoweredBelowZero) {
    EXPECT_TRUE(cubes().decUsage(1, 1, 1, 1, 1));
    EXPECT_EQ(counter(), "0\n");
    EXPECT_TRUE(cubes().isCorrect(1, 1, 1, 1, 1));
}

TEST_P(EntryUsage, makesAnEntryIncorrectWhileItIsAboveZero) {
    EXPECT_TRUE(cubes().isCorrect(1, 1, 1, 1, 1));
    cubes().incUsage(1, 1, 1, 1, 1);
    EXPECT_FALSE(cubes().isCorrect(1, 1, 1, 1, 1));
    cubes().decUsage(1, 1, 1, 1, 1);
    EXPECT_TRUE(cubes().isCorrect(1, 1, 1, 1, 1));
}

TEST_P(EntryUsage, ofNullCountsAsNoneAndIsRaisedToOne) {
    setCounter("null");
    EXPECT_TRUE(cubes().isCorrect(1, 1, 1, 1, 1));
    EXPECT_TRUE(cubes().decUsage(1, 1, 1, 1, 1));
    EXPECT_EQ(counter(), "NULL\n");
    EXPECT_TRUE(cubes().incUsage(1, 1, 1, 1, 1));
    EXPECT_EQ(counter(), "1\n");
}

TEST_P(EntryUsage, belowZeroIsNotCorrectAndNotLowered) {
    setCounter("-3");
    EXPECT_FALSE(cubes().isCorrect(1, 1, 1, 1, 1));
    EXPECT_TRUE(cubes().decUsage(1, 1, 1, 1, 1));
    EXPECT_EQ(counter(), "-3\n");
    EXPECT_TRUE(cubes().incUsage(1, 1, 1, 1, 1));
    EXPECT_EQ(counter(), "-2\n");
}

TEST_P(EntryUsage, ofAMissingEntryOrTableIsFalse) {
    EXPECT_FALSE(cubes().incUsage(1, 1, 1, 1, 2));
    EXPECT_FALSE(cubes().decUsage(1, 1, 1, 1, 2));
    EXPECT_FALSE(cubes().isCorrect(1, 1, 1, 1, 2));
    EXPECT_FALSE(cubes().incUsage(1, 0, 0, 0, 0));
    TRkMatCubes none(nullptr, ".odm", true);
    EXPECT_FALSE(none.incUsage(1, 1, 1, 1, 1));
    EXPECT_FALSE(none.decUsage(1, 1, 1, 1, 1));
    EXPECT_FALSE(none.isCorrect(1, 1, 1, 1, 1));
}

TEST_P(EntryUsage, findsACounterColumnOfOtherLetterCase) {
    project().project().connection()->Execute(
        "alter table " + table() + " rename column \"usageCounter\" to usagecounter");
    EXPECT_TRUE(cubes().incUsage(1, 1, 1, 1, 1));
    EXPECT_EQ(read("select usagecounter from " + table()), "1\n");
    EXPECT_FALSE(cubes().isCorrect(1, 1, 1, 1, 1));
}

TEST_P(EntryUsage, leavesOtherEntriesAlone) {
    cubes().Add("Base", 1, 1, 1, 2, false);
    cubes().incUsage(1, 1, 1, 1, 2);
    EXPECT_EQ(counter(), "0\n1\n");
}

}
}
