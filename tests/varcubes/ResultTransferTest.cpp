// How copying and moving six-key results differ from other entries: parents, counters, directories, zero-based keys.

#include <filesystem>

#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class ResultTransfer : public VarCubesTest {
protected:
    bool copy(short from, short to, bool failIfExists = false, bool zeroBased = false) {
        return skims().Copy(1, 1, 1, 1, 1, from, 1, 1, 1, 1, 1, to, failIfExists, zeroBased);
    }
    bool move(short from, short to, bool failIfExists = false, bool zeroBased = false) {
        return skims().Move(1, 1, 1, 1, 1, from, 1, 1, 1, 1, 1, to, failIfExists, zeroBased);
    }
    bool copyFrom(TRkVarCubes const& other, short from, short to, bool failIfExists = false) {
        return skims().Copy(other, 1, 1, 1, 1, 1, from, 1, 1, 1, 1, 1, to, failIfExists, false);
    }
    bool moveFrom(TRkVarCubes const& other, short from, short to, bool failIfExists = false) {
        return skims().Move(other, 1, 1, 1, 1, 1, from, 1, 1, 1, 1, 1, to, failIfExists, false);
    }
    void name(short iteration, std::string const& filename) {
        execute(
            "update " + table() + " set filename = '" + filename + "' where iteration = " + std::to_string(iteration));
    }
};

CUBES_BOTH_BACKENDS(ResultTransfer);

TEST_P(ResultTransfer, copiesRowAndFileWithoutParentAndCounter) {
    store(skims(), 1, 1);
    skims().Add(1, 1, 1, 1, 1, 1, -6, 1, 2, 3, 4, 5, 6, false);
    skims().incUsage(1, 1, 1, 1, 1, 1);
    EXPECT_TRUE(copy(1, 2));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|1|1-1-1-1-1-1.skm\n-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
    EXPECT_EQ(parents(), "-6|1|2|3|4|5|6\nNULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(readFile(pathOf("1-1-1-1-1-1.skm")), readFile(pathOf("1-1-1-1-1-2.skm")));
    EXPECT_EQ(firstElement(skims(), 2), 1.0);
}

TEST_P(ResultTransfer, ontoTheSameKeyIsTrueAtOnce) {
    EXPECT_TRUE(copy(1, 1, true));
    EXPECT_TRUE(move(1, 1, true));
    EXPECT_TRUE(copyFrom(TRkSkimCube(skims()), 1, 1, true));
    EXPECT_EQ(rows(), "");
    store(skims(), 1, 1);
    EXPECT_TRUE(move(1, 1));
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
}

TEST_P(ResultTransfer, overwritesATargetAndClearsItsParent) {
    for (bool const moves : {false, true}) {
        store(skims(), 1, 1);
        store(skims(), 2, 2);
        skims().Add(1, 1, 1, 1, 1, 2, -6, 1, 2, 3, 4, 5, 6, false);
        name(2, "mine.skm");
        writeFile(pathOf("mine.skm"), "old");
        EXPECT_TRUE(moves ? move(1, 2) : copy(1, 2));
        EXPECT_EQ(
            read("select \"usageCounter\", filename from " + table() + " where iteration = 2"), "NULL|mine.skm\n");
        EXPECT_EQ(read("select parentcubenr from " + table() + " where iteration = 2"), "NULL\n");
        EXPECT_EQ(firstElement(skims(), 2), 1.0);
    }
    EXPECT_FALSE(skims().Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(fs::exists(pathOf("1-1-1-1-1-1.skm")));
}

// The zero-based flag applies to the look-up only, so the target has the key that the caller passed.
TEST_P(ResultTransfer, zeroBasedFindsTheSourceOneBasedAndAddsTheTargetAsPassed) {
    store(skims(), 1, 1);
    EXPECT_TRUE(skims().Copy(0, 0, 0, 0, 1, 1, 5, 5, 5, 5, 1, 2, false, true));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n-1|5|5|5|5|1|2|0|5-5-5-5-1-2.skm\n");
    EXPECT_TRUE(skims().Move(0, 0, 0, 0, 1, 1, 6, 6, 6, 6, 1, 2, false, true));
    EXPECT_EQ(rows(), "-1|5|5|5|5|1|2|0|5-5-5-5-1-2.skm\n-1|6|6|6|6|1|2|0|6-6-6-6-1-2.skm\n");
    EXPECT_EQ(files(), "5-5-5-5-1-2.skm\n6-6-6-6-1-2.skm\n");
    // failIfExists looks the target up zero-based as well: 5/5/5/5 is the row for 4/4/4/4.
    EXPECT_EQ(
        cubeErrorOf([&] { skims().Copy(5, 5, 5, 5, 1, 2, 4, 4, 4, 4, 1, 2, true, true); }), "Cube already exists");
}

TEST_P(ResultTransfer, zeroBasedOntoItsOwnFileIsFalseAndKeepsIt) {
    store(skims(), 1, 1);
    EXPECT_FALSE(skims().Copy(0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, false, true));
    EXPECT_FALSE(skims().Move(0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, false, true));
    EXPECT_TRUE(skims().Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(firstElement(skims(), 1), 1.0);
}

TEST_P(ResultTransfer, betweenCubesKeepsTheKeyAndChangesCubeAndExtension) {
    TRkPathCube paths(project().settings(), true);
    store(paths, 1, 1);
    EXPECT_TRUE(copyFrom(paths, 1, 1, true));
    EXPECT_EQ(rows(), "-6|1|1|1|1|1|1|0|1-1-1-1-1-1.ptm\n-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_EQ(firstElement(skims(), 1), 1.0);
    EXPECT_TRUE(moveFrom(paths, 1, 2));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n1-1-1-1-1-2.skm\n");
}

TEST_P(ResultTransfer, movesNoDirectoryToAnotherFileSystem) {
    std::string const elsewhere = otherFileSystem(directory());
    if (elsewhere.empty()) GTEST_SKIP() << "SKIPPED: no second file system here";
    TempDir const there(elsewhere);
    TRkSkimCube theirs(project().settings(), there.str().c_str(), true);
    fs::create_directory(there.file("1-1-1-1-1-3.skm"));
    add(theirs, 3);
    EXPECT_FALSE(moveFrom(theirs, 3, 4));
    EXPECT_TRUE(theirs.Check(1, 1, 1, 1, 1, 3, false));
    EXPECT_EQ(filesIn(there.str()), "1-1-1-1-1-3.skm\n");
    EXPECT_EQ(files(), "");
}

TEST_P(ResultTransfer, mergesADirectoryIntoAnExistingOne) {
    for (short const i : {short(1), short(2)}) {
        add(skims(), i);
        fs::create_directories(pathOf("1-1-1-1-1-" + std::to_string(i) + ".skm/in"));
    }
    writeFile(pathOf("1-1-1-1-1-1.skm/in/a"), "new");
    writeFile(pathOf("1-1-1-1-1-2.skm/in/a"), "old");
    writeFile(pathOf("1-1-1-1-1-2.skm/b"), "stays");
    EXPECT_TRUE(copy(1, 2));
    EXPECT_EQ(readFile(pathOf("1-1-1-1-1-2.skm/in/a")), "new");
    EXPECT_EQ(readFile(pathOf("1-1-1-1-1-2.skm/b")), "stays");
    EXPECT_EQ(readFile(pathOf("1-1-1-1-1-1.skm/in/a")), "new");
}

TEST_P(ResultTransfer, betweenCubesTransfersDirectoriesAndIgnoresTheUsageCounter) {
    TempDir const elsewhere;
    TRkPathCube other(project().settings(), TRkFString(elsewhere.str()), true);
    add(other, 1);
    other.incUsage(1, 1, 1, 1, 1, 1);
    fs::create_directory(elsewhere.file("1-1-1-1-1-1.ptm"));
    writeFile(elsewhere.file("1-1-1-1-1-1.ptm/a"), "x");
    add(skims(), 1);
    fs::create_directory(pathOf("1-1-1-1-1-1.skm"));
    EXPECT_TRUE(copyFrom(other, 1, 1));
    EXPECT_TRUE(moveFrom(other, 1, 2));
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n1-1-1-1-1-1.skm/a\n1-1-1-1-1-2.skm\n1-1-1-1-1-2.skm/a\n");
    EXPECT_EQ(filesIn(elsewhere.str()), "");
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|NULL|1-1-1-1-1-1.skm\n-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
}

TEST_P(ResultTransfer, replacesADirectoryByAMovedOne) {
    for (short const i : {short(1), short(2)}) {
        add(skims(), i);
        fs::create_directory(pathOf("1-1-1-1-1-" + std::to_string(i) + ".skm"));
    }
    writeFile(pathOf("1-1-1-1-1-1.skm/a"), "new");
    writeFile(pathOf("1-1-1-1-1-2.skm/b"), "old");
    EXPECT_TRUE(move(1, 2));
    EXPECT_EQ(files(), "1-1-1-1-1-2.skm\n1-1-1-1-1-2.skm/a\n");
    EXPECT_FALSE(skims().Check(1, 1, 1, 1, 1, 1, false));
}

TEST_P(ResultTransfer, ofADirectoryToAFreeKeyCanBeAMoveButNotACopy) {
    add(skims(), 1);
    fs::create_directory(pathOf("1-1-1-1-1-1.skm"));
    writeFile(pathOf("1-1-1-1-1-1.skm/a"), "x");
    EXPECT_FALSE(copy(1, 2));
    EXPECT_FALSE(fs::exists(pathOf("1-1-1-1-1-2.skm")));
    EXPECT_TRUE(move(1, 3));
    EXPECT_EQ(files(), "1-1-1-1-1-3.skm\n1-1-1-1-1-3.skm/a\n");
}

TEST_P(ResultTransfer, ofADirectoryIntoItselfIsFalseAndKeepsIt) {
    add(skims(), 1);
    add(skims(), 2);
    fs::create_directories(pathOf("outer/inner"));
    writeFile(pathOf("outer/inner/a"), "precious");
    for (bool const swap : {false, true}) {
        name(1, swap ? "outer" : "outer\\inner");
        name(2, swap ? "outer\\inner" : "outer");
        EXPECT_FALSE(copy(1, 2));
        EXPECT_FALSE(move(1, 2));
    }
    EXPECT_EQ(files(), "outer\nouter/inner\nouter/inner/a\n");
}

TEST_P(ResultTransfer, betweenCubesShiftsZeroBasedKeysForTheLookUpOnly) {
    TempDir const elsewhere;
    TRkSkimCube other(project().settings(), elsewhere.str().c_str(), true);
    store(other, 1, 1);
    EXPECT_TRUE(skims().Copy(other, 0, 0, 0, 0, 1, 1, 2, 2, 2, 2, 1, 1, false, true));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n-1|2|2|2|2|1|1|0|2-2-2-2-1-1.skm\n");
    EXPECT_EQ(files(), "2-2-2-2-1-1.skm\n");
}

}
}
