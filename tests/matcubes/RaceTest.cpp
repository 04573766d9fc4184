// Several processes on one project at once, each with a connection of its own.

#include "matcubes/MatCubesTest.h"
#include "support/OwnProcesses.h"

#include <cubes/catalogue/TRkCubes.h>

#include <stdexcept>

namespace cubes::test {
namespace {

constexpr int processes = 4;
constexpr int rounds = 5;

class Race : public MatCubesTest {
protected:
    void SetUp() override {
        MatCubesTest::SetUp();
        if (!IsSkipped()) root_ = project().root();
    }

    /// Runs `work` in several processes, each on a project object of its own.
    template <typename Work>
    int race(Work) const {
        auto const live = [](std::string const& root, int number) {
            Project const own = Project::open(root);
            TRkMatCubes cubes(own.settings(), ".odm", true);
            Work()(number, cubes);
        };
        return inOwnProcesses(processes, live, root_);
    }

    static void require(bool done) {
        if (!done) throw std::runtime_error("refused");
    }

private:
    std::string root_;
};

CUBES_BOTH_BACKENDS(Race);

TEST_P(Race, ofOneNameEndsWithOneCube) {
    EXPECT_EQ(race([](int, TRkMatCubes& cubes) {
        for (int round = 0; round < rounds; ++round) require(cubes.Add(("Cube" + std::to_string(round)).c_str()));
    }),
        processes);
    EXPECT_EQ(cubeRows(), "1|Cube0\n2|Cube1\n3|Cube2\n4|Cube3\n5|Cube4\n");
}

TEST_P(Race, ofDifferentNamesGivesDifferentNumbers) {
    EXPECT_EQ(race([](int number, TRkMatCubes& cubes) {
        for (int round = 0; round < rounds; ++round)
            require(cubes.Add((std::to_string(number) + "-" + std::to_string(round)).c_str()));
    }),
        processes);
    EXPECT_EQ(read("select count(*), count(distinct cubenr), max(cubenr) from cube"), "20|20|20\n");
}

TEST_P(Race, ofOneEntryEndsWithOneRow) {
    EXPECT_EQ(race([](int, TRkMatCubes& cubes) {
        for (short user = 1; user <= rounds; ++user) require(cubes.Add("Base", 1, 1, 1, user, false));
    }),
        processes);
    EXPECT_EQ(read("select count(*), max(\"user\") from " + table()), "5|5\n");
    EXPECT_EQ(cubeRows(), "1|Base\n");
}

TEST_P(Race, ofUsersLosesNone) {
    ASSERT_TRUE(cubes().Add("Base", 1, 1, 1, 1, false));
    EXPECT_EQ(race([](int, TRkMatCubes& cubes) {
        for (int round = 0; round < rounds; ++round) require(cubes.incUsage(1, 1, 1, 1, 1));
    }),
        processes);
    EXPECT_EQ(read("select \"usageCounter\" from " + table()), "20\n");
}

TEST_P(Race, ofReservedRowsEndsWithOneOfEach) {
    EXPECT_EQ(race([](int, TRkMatCubes& cubes) { TRkCubes const kinds(cubes.Settings()); }), processes);
    EXPECT_EQ(read("select count(*), min(cubenr), max(cubenr) from cube"), "6|-6|-1\n");
}

}
}
