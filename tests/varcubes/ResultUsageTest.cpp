#include <stdexcept>

#include "support/ChildTask.h"
#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

class ResultUsage : public VarCubesTest {
protected:
    void SetUp() override {
        VarCubesTest::SetUp();
        if (!IsSkipped()) add(skims(), 1);
    }

    bool raise() { return skims().incUsage(1, 1, 1, 1, 1, 1); }
    bool lower() { return skims().decUsage(1, 1, 1, 1, 1, 1); }
    bool isCorrect() { return skims().isCorrect(1, 1, 1, 1, 1, 1); }
    std::string counter() { return read("select \"usageCounter\" from " + table() + " order by iteration"); }
    void setCounter(std::string const& value) { execute("update " + table() + " set \"usageCounter\" = " + value); }
};

CUBES_BOTH_BACKENDS(ResultUsage);

TEST_P(ResultUsage, isRaisedAndLoweredByOneAndNotBelowZero) {
    EXPECT_TRUE(isCorrect());
    EXPECT_TRUE(raise());
    EXPECT_TRUE(raise());
    EXPECT_EQ(counter(), "2\n");
    EXPECT_FALSE(isCorrect());
    EXPECT_TRUE(lower());
    EXPECT_EQ(counter(), "1\n");
    EXPECT_FALSE(isCorrect());
    EXPECT_TRUE(lower());
    EXPECT_TRUE(isCorrect());
    EXPECT_TRUE(lower());
    EXPECT_EQ(counter(), "0\n");
}

TEST_P(ResultUsage, ofNullCountsAsNoneStaysNullWhenLoweredAndIsRaisedToOne) {
    setCounter("null");
    EXPECT_TRUE(isCorrect());
    EXPECT_TRUE(lower());
    EXPECT_EQ(counter(), "NULL\n");
    EXPECT_TRUE(raise());
    EXPECT_EQ(counter(), "1\n");
}

TEST_P(ResultUsage, belowZeroIsNotCorrectAndNotLowered) {
    setCounter("-3");
    EXPECT_FALSE(isCorrect());
    EXPECT_TRUE(lower());
    EXPECT_EQ(counter(), "-3\n");
}

TEST_P(ResultUsage, leavesOtherEntriesAloneAndTakesKeysOneBased) {
    add(skims(), 2);
    EXPECT_TRUE(skims().incUsage(1, 1, 1, 1, 1, 2));
    EXPECT_EQ(counter(), "0\n1\n");
    EXPECT_FALSE(skims().incUsage(0, 0, 0, 0, 1, 1));
    EXPECT_FALSE(skims().decUsage(0, 0, 0, 0, 1, 1));
    EXPECT_FALSE(skims().isCorrect(0, 0, 0, 0, 1, 1));
}

TEST_P(ResultUsage, ofAMissingEntryOrTableIsFalse) {
    EXPECT_FALSE(skims().incUsage(1, 1, 1, 1, 1, 2));
    EXPECT_FALSE(skims().decUsage(1, 1, 1, 1, 1, 2));
    EXPECT_FALSE(skims().isCorrect(1, 1, 1, 1, 1, 2));
    skims().setMatrixSchema("nowhere");
    EXPECT_FALSE(raise());
    EXPECT_FALSE(lower());
    EXPECT_FALSE(isCorrect());
}

TEST_P(ResultUsage, findsACounterColumnOfOtherLetterCase) {
    execute("alter table " + table() + " rename column \"usageCounter\" to usagecounter");
    EXPECT_TRUE(raise());
    EXPECT_EQ(read("select usagecounter from " + table()), "1\n");
    EXPECT_FALSE(isCorrect());
}

ChildTask const manyUsers("many users", [](int, std::string const& root) {
    Project const own = Project::open(root);
    TRkSkimCube cube(own.settings(), true);
    for (int i = 0; i < 50; ++i)
        if (!cube.incUsage(1, 1, 1, 1, 1, 1)) throw std::runtime_error("not raised");
});

TEST_P(ResultUsage, losesNoChangeOfTwoProcesses) {
    EXPECT_EQ(manyUsers.inProcesses(2, project().root()), 2);
    EXPECT_EQ(counter(), "100\n");
}

}
}
