#include <cubes/core/TRkCubesException.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <filesystem>

#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

class ResultStorage : public VarCubesTest {
protected:
    static TRkVarCubes plainCube(TRkGlobalSettings* settings, RkCubeTypes cubeType, RkMatrixType matrixType) {
        return {settings, ".mat", cubeType, matrixType, mkDefault, true};
    }
};

CUBES_BOTH_BACKENDS(ResultStorage);

TEST_P(ResultStorage, makesRowAndFile) {
    EXPECT_TRUE(skims().Set(1, 2, 3, 4, 5, 6, matrix(5), lsReadWrite, false));
    EXPECT_EQ(rows(), "-1|1|2|3|4|5|6|0|1-2-3-4-5-6.skm\n");
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    std::unique_ptr<TRkMatrix> const found(skims().Get(0, 1, 2, 3, 5, 6, lsRead, true));
    ASSERT_TRUE(found);
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(found->RowAt(row, 8)[column], 5.0f + static_cast<float>(10 * row + column));
    EXPECT_STREQ(found->FileName(), pathOf("1-2-3-4-5-6.skm").c_str());
    EXPECT_STREQ(found->Name().c_str(), "[1,2,3,4,5,6]");
    EXPECT_EQ(found->Type(), mtSkim);
    EXPECT_EQ(found->StateCode(), 1);
}

TEST_P(ResultStorage, clearsAnEntryThatExistsAndItsParent) {
    skims().Add(1, 1, 1, 1, 1, 1, -6, 1, 2, 3, 4, 5, 6, false);
    execute("update " + table() + " set filename = 'old.skm', \"usageCounter\" = 4");
    writeFile(pathOf("old.skm"), "old");
    EXPECT_TRUE(store(skims(), 1, 7));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
    EXPECT_EQ(firstElement(skims(), 1), 7.0);
}

// The flag goes to the parent cube, and the key to the row as it was handed in.
TEST_P(ResultStorage, zeroBasedMakesTheFileOfTheShiftedKeyAndTheRowOfTheOther) {
    EXPECT_TRUE(skims().Set(0, 0, 0, 0, 1, 1, matrix(5), lsReadWrite, true));
    EXPECT_EQ(rows(), "-1|0|0|0|0|1|1|0|0-0-0-0-1-1.skm\n");
    EXPECT_EQ(parents(), "1|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
    EXPECT_EQ(skims().Get(0, 0, 0, 0, 1, 1, lsRead, true), nullptr);
}

TEST_P(ResultStorage, zeroBasedClearsTheEntryOfTheShiftedKey) {
    store(skims(), 1, 1);
    EXPECT_TRUE(skims().Set(0, 0, 0, 0, 1, 1, matrix(5), lsReadWrite, true));
    EXPECT_EQ(rows(), "-1|0|0|0|0|1|1|0|0-0-0-0-1-1.skm\n");
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
}

TEST_P(ResultStorage, withoutATableWritesTheFileAllTheSame) {
    skims().setMatrixSchema("nowhere");
    EXPECT_TRUE(store(skims(), 1, 1));
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
    EXPECT_EQ(open(skims(), 1, lsRead), nullptr);
}

TEST_P(ResultStorage, savesUnderTheComputedNameWithoutAskingTheRow) {
    EXPECT_TRUE(skims().SaveMatrix(matrix(3), 0, 0, 0, 0, 1, 1, lsReadWrite, true));
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
    EXPECT_EQ(rows(), "");
    add(skims(), 1);
    execute("update " + table() + " set filename = 'other.skm'");
    EXPECT_TRUE(skims().SaveMatrix(matrix(3), 1, 1, 1, 1, 1, 1, lsReadWrite, false));
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
    EXPECT_EQ(open(skims(), 1, lsRead), nullptr);
}

TEST_P(ResultStorage, givesNullForWhatCannotBeHad) {
    store(skims(), 1, 1);
    EXPECT_EQ(open(skims(), 2, lsRead), nullptr);
    ASSERT_TRUE(open(skims(), 1, lsRead));
    skims().incUsage(1, 1, 1, 1, 1, 1);
    EXPECT_EQ(open(skims(), 1, lsRead), nullptr);
    skims().decUsage(1, 1, 1, 1, 1, 1);
    writeFile(pathOf("1-1-1-1-1-1.skm"), "no matrix");
    EXPECT_EQ(open(skims(), 1, lsRead), nullptr);
    std::filesystem::remove(pathOf("1-1-1-1-1-1.skm"));
    EXPECT_EQ(open(skims(), 1, lsRead), nullptr);
    EXPECT_EQ(skims().GetHeader(1, 1, 1, 1, 1, 1, false), nullptr);
    execute("update " + table() + " set filename = '../1.skm'");
    EXPECT_EQ(open(skims(), 1, lsRead), nullptr);
}

TEST_P(ResultStorage, readsOneElement) {
    store(skims(), 1, 1);
    EXPECT_EQ(skims().Get(1, 1, 1, 1, 1, 1, 0, 0, lsRead, false), 1.0);
    EXPECT_EQ(skims().Get(0, 0, 0, 0, 1, 1, 1, 2, lsRead, true), 13.0);
    EXPECT_EQ(skims().Get(1, 1, 1, 1, 1, 2, 0, 0, lsRead, false), -1.0);
    EXPECT_THROW(skims().Get(1, 1, 1, 1, 1, 1, 2, 0, lsRead, false), TRkMatrixException);
    EXPECT_THROW(skims().Get(1, 1, 1, 1, 1, 1, 0, 3, lsRead, false), TRkMatrixException);
    EXPECT_THROW(skims().Get(1, 1, 1, 1, 1, 1, 0, -1, lsRead, false), TRkMatrixException);
    skims().incUsage(1, 1, 1, 1, 1, 1);
    EXPECT_EQ(skims().Get(1, 1, 1, 1, 1, 1, 0, 0, lsRead, false), -1.0);
}

TEST_P(ResultStorage, givesNullWhereSomeoneElseWrites) {
    store(skims(), 1, 1);
    TRkMatrix const writer(2, 3, mtSkim, pathOf("1-1-1-1-1-1.skm").c_str(), 1, "", "", true, mkDefault, lsReadWrite);
    ASSERT_TRUE(writer.IsValid());
    EXPECT_EQ(open(skims(), 1, lsReadWrite), nullptr);
    EXPECT_EQ(skims().Get(1, 1, 1, 1, 1, 1, 0, 0, lsReadWrite, false), -1.0);
    EXPECT_EQ(firstElement(skims(), 1), 1.0);
}

TEST_P(ResultStorage, leavesNoLockAfterReadingOneElement) {
    store(skims(), 1, 1);
    EXPECT_EQ(skims().Get(1, 1, 1, 1, 1, 1, 0, 0, lsReadWrite, false), 1.0);
    EXPECT_TRUE(open(skims(), 1, lsReadWrite));
}

TEST_P(ResultStorage, readsAHeaderEvenOfAnEntryInUse) {
    store(skims(), 1, 1);
    skims().incUsage(1, 1, 1, 1, 1, 1);
    TRkMatrixHeader const* const header = skims().GetHeader(0, 0, 0, 0, 1, 1, true);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->Rows(), 2);
    EXPECT_EQ(header->Columns(), 3);
    EXPECT_EQ(header->Type(), mtSkim);
    EXPECT_EQ(header->Kind(), 2u);
    EXPECT_EQ(skims().GetHeader(1, 1, 1, 1, 1, 2, false), nullptr);
}

TEST_P(ResultStorage, replacesAKindAbove31TooUnlikeFourKeyCubes) {
    TRkMatrix source = matrix(1);
    source.MatrixKind(static_cast<RkMatrixKind>(1000));
    ASSERT_TRUE(skims().Set(1, 1, 1, 1, 1, 1, source, lsReadWrite, false));
    EXPECT_EQ(skims().GetHeader(1, 1, 1, 1, 1, 1, false)->Kind(), 2u);
}

// Bit 4 of the caller's lock asks for work in place; then the matrix must say that it changed.
TEST_P(ResultStorage, ontoTheMatrixsOwnFileAsksTheLockState) {
    struct {
        int opened;
        int lock;
        bool saved;
    } const cases[] = {{lsRead, lsRead, true}, {lsRead, lsReadWrite, true}, {lsRead, lsInPlace, false},
        {lsUnchanged, lsInPlace, false}, {lsReadWrite, lsInPlace | lsReadWrite, false}, {lsChanged, lsInPlace, true},
        {lsChanged, lsInPlace | lsReadWrite, true}, {lsChanged, lsRead, true}};
    for (auto const& c : cases) {
        store(skims(), 1, 1);
        auto const own = open(skims(), 1, static_cast<RkLockState>(c.opened));
        ASSERT_TRUE(own);
        own->RowAt(0, 8)[0] = 99;
        EXPECT_EQ(skims().SaveMatrix(*own, 1, 1, 1, 1, 1, 1, static_cast<RkLockState>(c.lock), false), c.saved)
            << c.opened << " " << c.lock;
        EXPECT_EQ(firstElement(skims(), 1), c.saved ? 99.0 : 1.0) << c.opened << " " << c.lock;
    }
}

TEST_P(ResultStorage, knowsItsOwnFileInAnotherSpelling) {
    store(skims(), 1, 1);
    std::string const spelling = pathOf("./1-1-1-1-1-1.skm");
    TRkMatrix const own(spelling.c_str(), 1, "", true, mkDefault, lsRead, 0);
    ASSERT_TRUE(own.IsValid());
    EXPECT_FALSE(skims().SaveMatrix(own, 1, 1, 1, 1, 1, 1, lsInPlace, false));
    EXPECT_TRUE(skims().SaveMatrix(own, 1, 1, 1, 1, 1, 1, lsRead, false));
    EXPECT_EQ(firstElement(skims(), 1), 1.0);
}

TEST_P(ResultStorage, ontoAnotherFileDoesNotAskTheLockState) {
    store(skims(), 1, 1);
    auto const other = open(skims(), 1, lsUnchanged);
    ASSERT_TRUE(other);
    EXPECT_TRUE(skims().Set(1, 1, 1, 1, 1, 2, *other, lsInPlace, false));
    EXPECT_EQ(firstElement(skims(), 2), 1.0);
}

TEST_P(ResultStorage, writesAChangedMatrixThatLivesInTheEntrysOwnFile) {
    store(skims(), 1, 1);
    auto const own = open(skims(), 1, lsChanged);
    ASSERT_TRUE(own);
    own->RowAt(0, 8)[0] = 99;
    EXPECT_TRUE(skims().Set(1, 1, 1, 1, 1, 1, *own, lsReadWrite, false));
    EXPECT_EQ(firstElement(skims(), 1), 99.0);
}

TEST_P(ResultStorage, turnsAMatrixTypeOfSevenIntoThatOfTheCubeForGood) {
    struct {
        RkCubeTypes cubeType;
        RkMatrixType given;
        RkMatrixType written;
    } const cases[] = {{ctStopToStop, mtMatrixCube, mtStopToStop}, {ctScreenLine, mtMatrixCube, mtScreenLine},
        {ctSelectedLink, mtMatrixCube, mtSelectedLink}, {ctCordon, mtMatrixCube, mtCordon},
        {ctSkim, mtMatrixCube, mtMatrixCube}, {ctTransit, mtMatrixCube, mtMatrixCube},
        {ctPath, mtMatrixCube, mtMatrixCube}, {ctStopToStop, mtSkim, mtSkim}, {ctCordon, mtSkim, mtSkim}};
    for (auto const& c : cases) {
        TRkVarCubes cube = plainCube(project().settings(), c.cubeType, c.given);
        ASSERT_TRUE(store(cube, 1, 1));
        EXPECT_EQ(cube.GetHeader(1, 1, 1, 1, 1, 1, false)->Type(), c.written) << c.cubeType;
        TRkVarCubes later(cube);
        ASSERT_TRUE(store(later, 2, 1));
        EXPECT_EQ(later.GetHeader(1, 1, 1, 1, 1, 2, false)->Type(), c.written) << c.cubeType;
    }
}

TEST_P(ResultStorage, leavesTheMatrixTypeAloneWhenNothingIsSaved) {
    TRkVarCubes cube = plainCube(project().settings(), ctCordon, mtMatrixCube);
    {
        TRkVarCubes other(cube);
        ASSERT_TRUE(store(other, 1, 1));
    }
    auto const own = open(cube, 1, lsRead);
    ASSERT_TRUE(own);
    struct Typed : TRkVarCubes {
        explicit Typed(TRkVarCubes const& cube) : TRkVarCubes(cube) {}
        RkMatrixType type() const { return matrixType_; }
    };
    Typed typed(cube);
    EXPECT_FALSE(typed.SaveMatrix(*own, 1, 1, 1, 1, 1, 1, lsInPlace, false));
    EXPECT_EQ(typed.type(), mtMatrixCube);
    EXPECT_TRUE(typed.SaveMatrix(*own, 1, 1, 1, 1, 1, 1, lsRead, false));
    EXPECT_EQ(typed.type(), mtCordon);
}

TEST_P(ResultStorage, givesTheKindOfTheCubesType) {
    struct {
        RkCubeTypes cubeType;
        RkMatrixKind kind;
    } const cases[] = {{ctSkim, mkDefault}, {ctSelectedLink, mkDefault}, {ctCordon, mkDefault},
        {ctScreenLine, mkScreenLine}, {ctTransit, mkTransit}, {ctPath, mkPath}, {ctStopToStop, mkStopToStop}};
    for (auto const& c : cases) {
        TRkVarCubes cube = plainCube(project().settings(), c.cubeType, mtMatrixCube);
        ASSERT_TRUE(store(cube, 1, 1));
        auto const found = open(cube, 1, lsRead);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->MatrixKind(), c.kind) << c.cubeType;
    }
}

TEST_P(ResultStorage, keepsZoneNumbers) {
    TRkMatrix square = TRkMatrix::inMemory(2, 2);
    square.SetZones({101, 205});
    ASSERT_TRUE(skims().Set(1, 1, 1, 1, 1, 1, square, lsReadWrite, false));
    EXPECT_EQ(open(skims(), 1, lsRead)->Zones(), (std::vector<std::int32_t>{101, 205}));
}

TEST_P(ResultStorage, isFalseWhenTheFileCannotBeMade) {
    TRkSkimCube elsewhere(project().settings(), pathOf("missing").c_str(), true);
    EXPECT_FALSE(elsewhere.SaveMatrix(matrix(1), 1, 1, 1, 1, 1, 1, lsReadWrite, false));
    EXPECT_FALSE(std::filesystem::exists(pathOf("missing")));
    std::filesystem::create_directory(pathOf("1-1-1-1-1-1.skm"));
    EXPECT_FALSE(skims().SaveMatrix(matrix(1), 1, 1, 1, 1, 1, 1, lsReadWrite, false));
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
}

// A file made without the write bit asks for no lock; in these cubes the lock state becomes 3.
TEST_P(ResultStorage, ofSelectedLinksAndScreenLinesTakesTheWriteLockWhateverTheCallersState) {
    struct {
        RkCubeTypes cubeType;
        bool saved;
    } const cases[] = {
        {ctSkim, true}, {ctCordon, true}, {ctPath, true}, {ctSelectedLink, false}, {ctScreenLine, false}};
    TRkMatrix const writer(2, 3, mtSkim, pathOf("1-1-1-1-1-1.mat").c_str(), 1, "", "", true, mkDefault, lsReadWrite);
    ASSERT_TRUE(writer.IsValid());
    for (auto const& c : cases) {
        TRkVarCubes cube = plainCube(project().settings(), c.cubeType, mtSkim);
        EXPECT_EQ(cube.SaveMatrix(matrix(2), 1, 1, 1, 1, 1, 1, lsRead, false), c.saved) << c.cubeType;
        EXPECT_FALSE(cube.SaveMatrix(matrix(2), 1, 1, 1, 1, 1, 1, lsReadWrite, false)) << c.cubeType;
    }
}

// Raised by 1 it would be no number of 16 bits.
TEST_P(ResultStorage, hasNoEntryForTheLastZeroBasedNumber) {
    short const last = 32767;
    auto table = skims().Open();
    EXPECT_FALSE(skims().LookUp(table, -1, last, 1, 1, 1, 1, 1, true));
    EXPECT_FALSE(skims().Add(table, -1, 1, last, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, true));
    EXPECT_EQ(skims().Get(1, 1, last, 1, 1, 1, lsRead, true), nullptr);
    EXPECT_FALSE(skims().Set(1, 1, 1, last, 1, 1, matrix(1), lsRead, true));
    EXPECT_FALSE(skims().SaveMatrix(matrix(1), last, 1, 1, 1, 1, 1, lsRead, true));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files(), "");
    // Result and iteration are never raised.
    EXPECT_TRUE(skims().Add(0, 0, 0, 0, last, last, 0, -1, -1, -1, -1, -1, -1, true));
    EXPECT_TRUE(skims().Check(1, 1, 1, 1, last, last, false));
}

TEST_P(ResultStorage, keepsTheOldEntryWhenThePairsCannotHoldANumber) {
    ASSERT_TRUE(skims().Set(0, 1, 1, 1, 1, 1, matrix(1), lsRead, false));
    TRkBaseCubes::Version = 3;
    EXPECT_THROW(skims().Set(-1, 0, 0, 0, 1, 1, matrix(2), lsRead, true), TRkCubesException);
    EXPECT_THROW(skims().Set(1600, 1, 1, 1, 1, 1, matrix(2), lsRead, false), TRkCubesException);
    TRkBaseCubes::Version = 4;
    EXPECT_EQ(files(), "0-1-1-1-1-1.skm\n");
    EXPECT_EQ(rows(), "-1|0|1|1|1|1|1|0|0-1-1-1-1-1.skm\n");
}

// As callers are told: give it a matrix that is not bound to the entry's own file.
TEST_P(ResultStorage, ontoTheMatrixsOwnFileInPlaceClearsAndThenRefuses) {
    store(skims(), 1, 1);
    auto const own = open(skims(), 1, lsRead);
    EXPECT_FALSE(skims().Set(1, 1, 1, 1, 1, 1, *own, lsInPlace, false));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_EQ(files(), "");
}

}
}
