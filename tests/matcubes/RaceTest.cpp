// Several processes use one project at the same time, each with its own connection.

#include "matcubes/MatCubesTest.h"
#include "support/ChildTask.h"

#include <cubes/catalogue/TRkCubes.h>

#include <stdexcept>

namespace cubes::test {
namespace {

constexpr int processes = 4;
constexpr int rounds = 5;

class Race : public MatCubesTest {
protected:
    int run(ChildTask const& task) { return task.inProcesses(processes, project().root()); }
};

CUBES_BOTH_BACKENDS(Race);

// Each process uses its own project object.
ChildTask taskOf(char const* name, void (*work)(int, TRkMatCubes&)) {
    return ChildTask(name, [work](int number, std::string const& root) {
        Project const own = Project::open(root);
        TRkMatCubes cubes(own.settings(), ".odm", true);
        work(number, cubes);
    });
}

void require(bool done) {
    if (!done) throw std::runtime_error("refused");
}

ChildTask const sameCubes = taskOf("same cubes", [](int, TRkMatCubes& cubes) {
    for (int round = 0; round < rounds; ++round) require(cubes.Add(("Cube" + std::to_string(round)).c_str()));
});
ChildTask const differentCubes = taskOf("different cubes", [](int number, TRkMatCubes& cubes) {
    for (int round = 0; round < rounds; ++round)
        require(cubes.Add((std::to_string(number) + "-" + std::to_string(round)).c_str()));
});
ChildTask const sameEntries = taskOf("same entries", [](int, TRkMatCubes& cubes) {
    for (short user = 1; user <= rounds; ++user) require(cubes.Add("Base", 1, 1, 1, user, false));
});
// Each adds and removes what the others copy and move.
ChildTask const transfers = taskOf("transfers", [](int number, TRkMatCubes& cubes) {
    short const own = cubes.CubeNameToNr("Base");
    auto const a = static_cast<short>(1 + number % 2);
    auto const b = static_cast<short>(2 - number % 2);
    for (int round = 0; round < 60; ++round) {
        cubes.Add("Base", a, 1, 1, 1, false);
        cubes.Copy(own, a, 1, 1, 1, own, b, 1, 1, 1, false, false);
        cubes.Move(own, b, 1, 1, 1, own, a, 1, 1, 1, false, false);
        cubes.Clear(own, a, 1, 1, 1, false);
    }
});
ChildTask const reservedRows =
    taskOf("reserved rows", [](int, TRkMatCubes& cubes) { TRkCubes const kinds(cubes.Settings()); });

TEST_P(Race, ofOneNameCreatesOneCube) {
    EXPECT_EQ(run(sameCubes), processes);
    EXPECT_EQ(cubeRows(), "1|Cube0\n2|Cube1\n3|Cube2\n4|Cube3\n5|Cube4\n");
}

TEST_P(Race, ofDifferentNamesGivesDifferentNumbers) {
    EXPECT_EQ(run(differentCubes), processes);
    EXPECT_EQ(read("select count(*), count(distinct cubenr), max(cubenr) from cube"), "20|20|20\n");
}

TEST_P(Race, ofOneEntryCreatesOneRow) {
    EXPECT_EQ(run(sameEntries), processes);
    EXPECT_EQ(read("select count(*), max(\"user\") from " + table()), "5|5\n");
    EXPECT_EQ(cubeRows(), "1|Base\n");
}

TEST_P(Race, ofCopiesMovesAndRemovalsIsNoError) {
    cubes().Add("Base");
    EXPECT_EQ(run(transfers), processes);
}

TEST_P(Race, ofReservedRowsCreatesOneOfEach) {
    EXPECT_EQ(run(reservedRows), processes);
    EXPECT_EQ(read("select count(*), min(cubenr), max(cubenr) from cube"), "6|-6|-1\n");
}

}
}
