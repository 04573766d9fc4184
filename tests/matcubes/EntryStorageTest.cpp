#include <cubes/core/TRkCubesException.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <filesystem>

#include "matcubes/MatCubesTest.h"

namespace cubes::test {
namespace {

class EntryStorage : public MatCubesTest {
protected:
    /// A stored entry 1/1/1/1/1 whose first element is 1.
    void storeBase() { ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 1, matrix(1), lsReadWrite, false)); }

    std::unique_ptr<TRkMatrix> open(RkLockState lock) {
        return std::unique_ptr<TRkMatrix>(cubes().Get(1, 1, 1, 1, 1, lock, false));
    }
};

CUBES_BOTH_BACKENDS(EntryStorage);

TEST_P(EntryStorage, byNameMakesCubeRowAndFile) {
    EXPECT_TRUE(cubes().Set("Base", 1, 2, 3, 4, matrix(5), lsReadWrite, false));
    EXPECT_EQ(cubeRows(), "1|Base\n");
    EXPECT_EQ(rows(), "1|1|2|3|4|0|1-1-2-3-4.odm\n");
    std::unique_ptr<TRkMatrix> const read(cubes().Get("base", 1, 2, 3, 4, lsRead, false));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->Rows(), 2);
    EXPECT_EQ(read->Columns(), 3);
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(read->RowAt(row, 8)[column], 5.0f + static_cast<float>(10 * row + column));
    EXPECT_EQ(read->Type(), mtMatrixCube);
    EXPECT_EQ(read->Header().Kind(), 0u);
    EXPECT_STREQ(read->FileName(), pathOf("1-1-2-3-4.odm").c_str());
}

TEST_P(EntryStorage, byNumberNeedsAnEntry) {
    cubes().Add("Base");
    EXPECT_FALSE(cubes().Set(1, 1, 1, 1, 1, matrix(1), lsReadWrite, false));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files().find(".odm"), std::string::npos);
}

TEST_P(EntryStorage, byNumberKeepsRowAndCounter) {
    storeBase();
    cubes().incUsage(1, 1, 1, 1, 1);
    EXPECT_TRUE(cubes().Set(1, 0, 0, 0, 0, matrix(7), lsReadWrite, true));
    EXPECT_EQ(rows(), "1|1|1|1|1|1|1-1-1-1-1.odm\n");
    EXPECT_EQ(firstElement(1, 1, 1, 1, 1), 7.0);
}

TEST_P(EntryStorage, byNameClearsTheEntryFirst) {
    storeBase();
    cubes().incUsage(1, 1, 1, 1, 1);
    EXPECT_TRUE(cubes().Set("Base", 0, 0, 0, 0, matrix(7), lsReadWrite, true));
    EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
    EXPECT_EQ(firstElement(1, 1, 1, 1, 1), 7.0);
}

TEST_P(EntryStorage, savesUnderTheComputedNameWhateverTheRowSays) {
    cubes().Add("Base", 1, 1, 1, 1, false);
    project().execute("update " + table() + " set filename = 'other.odm'");
    EXPECT_TRUE(cubes().Set(1, 1, 1, 1, 1, matrix(1), lsReadWrite, false));
    EXPECT_TRUE(std::filesystem::exists(pathOf("1-1-1-1-1.odm")));
    EXPECT_FALSE(std::filesystem::exists(pathOf("other.odm")));
    EXPECT_EQ(open(lsRead), nullptr);
}

TEST_P(EntryStorage, savesWithoutARow) {
    EXPECT_TRUE(cubes().SaveMatrix(matrix(3), 9, 0, 0, 0, 0, lsReadWrite, true));
    EXPECT_TRUE(std::filesystem::exists(pathOf("9-1-1-1-1.odm")));
    EXPECT_EQ(rows(), "");
}

TEST_P(EntryStorage, givesANewMatrixWithTheKeyInItsName) {
    storeBase();
    for (auto* const found : {cubes().Get(1, 1, 1, 1, 1, lsRead, false), cubes().Get(1, 0, 0, 0, 0, lsRead, true),
             cubes().Get("BASE", 0, 0, 0, 0, lsRead, true)}) {
        std::unique_ptr<TRkMatrix> const owned(found);
        ASSERT_TRUE(owned);
        EXPECT_STREQ(owned->Name().c_str(), "Base [1,1,1,1]");
        EXPECT_EQ(owned->StateCode(), 1);
    }
}

TEST_P(EntryStorage, givesNullForWhatCannotBeHad) {
    storeBase();
    EXPECT_EQ(cubes().Get(1, 1, 1, 1, 2, lsRead, false), nullptr);
    EXPECT_EQ(cubes().Get("Other", 1, 1, 1, 1, lsRead, false), nullptr);
    EXPECT_EQ(cubes().Get(nullptr, 1, 1, 1, 1, lsRead, false), nullptr);
    writeFile(pathOf("1-1-1-1-1.odm"), "no matrix");
    EXPECT_EQ(open(lsRead), nullptr);
    std::filesystem::remove(pathOf("1-1-1-1-1.odm"));
    EXPECT_EQ(open(lsRead), nullptr);
    project().execute("update " + table() + " set filename = '../1-1-1-1-1.odm'");
    EXPECT_EQ(open(lsRead), nullptr);
}

TEST_P(EntryStorage, passesTheLockStateThrough) {
    storeBase();
    for (int const lock : {0, 1, 2, 3, 8, 11, 99}) {
        auto const found = open(static_cast<RkLockState>(lock));
        ASSERT_TRUE(found) << lock;
        EXPECT_EQ(found->StateCode(), lock);
    }
}

TEST_P(EntryStorage, refusesASecondWriter) {
    storeBase();
    auto const writer = open(lsReadWrite);
    ASSERT_TRUE(writer);
    EXPECT_EQ(open(lsReadWrite), nullptr);
    EXPECT_NE(open(lsRead), nullptr);
}

TEST_P(EntryStorage, readsOneElement) {
    storeBase();
    EXPECT_EQ(cubes().Get(1, 1, 1, 1, 1, 0, 0, lsRead, false), 1.0);
    EXPECT_EQ(cubes().Get(1, 0, 0, 0, 0, 1, 2, lsRead, true), 13.0);
    EXPECT_EQ(cubes().Get("Base", 1, 1, 1, 1, 1, 1, lsRead, false), 12.0);
    EXPECT_EQ(cubes().Get(1, 1, 1, 1, 2, 0, 0, lsRead, false), -1.0);
    EXPECT_EQ(cubes().Get("Other", 1, 1, 1, 1, 0, 0, lsRead, false), -1.0);
}

TEST_P(EntryStorage, readsAnElementUnderAWriteLockAndLetsItGo) {
    storeBase();
    EXPECT_EQ(cubes().Get(1, 1, 1, 1, 1, 0, 0, lsReadWrite, false), 1.0);
    EXPECT_EQ(cubes().Get(1, 1, 1, 1, 1, 0, 0, lsReadWrite, false), 1.0);
    EXPECT_NE(open(lsReadWrite), nullptr);
}

TEST_P(EntryStorage, byNameClearsNothingWhenTheNewNameCannotBeMade) {
    ASSERT_TRUE(cubes().Set("Base", 2000, 1, 1, 1, matrix(1), lsReadWrite, false));
    TRkBaseCubes::Version = 3;
    EXPECT_THROW(cubes().Set("Base", 2000, 1, 1, 1, matrix(2), lsReadWrite, false), TRkCubesException);
    TRkBaseCubes::Version = 4;
    EXPECT_EQ(rows(), "1|2000|1|1|1|0|1-2000-1-1-1.odm\n");
    EXPECT_EQ(firstElement(1, 2000, 1, 1, 1), 1.0);
}

TEST_P(EntryStorage, leavesAFileAloneThatAnotherObjectIsWriting) {
    storeBase();
    ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 2, matrix(2), lsReadWrite, false));
    std::string const before = readFile(pathOf("1-1-1-1-2.odm"));
    auto const source = open(lsUnchanged);
    TRkMatrix const writer(
        2, 3, mtMatrixCube, pathOf("1-1-1-1-2.odm").c_str(), 1, "", "", true, mkDefault, lsReadWrite);
    ASSERT_TRUE(writer.IsValid());
    EXPECT_FALSE(cubes().SaveMatrix(*source, 1, 1, 1, 1, 2, lsReadWrite, false));
    EXPECT_EQ(readFile(pathOf("1-1-1-1-2.odm")), before);
}

TEST_P(EntryStorage, refusesAnElementOutsideTheMatrix) {
    storeBase();
    EXPECT_THROW(cubes().Get(1, 1, 1, 1, 1, 2, 0, lsRead, false), TRkMatrixException);
    EXPECT_THROW(cubes().Get(1, 1, 1, 1, 1, -1, 0, lsRead, false), TRkMatrixException);
    EXPECT_THROW(cubes().Get(1, 1, 1, 1, 1, 0, 3, lsRead, false), TRkMatrixException);
    EXPECT_THROW(cubes().Get(1, 1, 1, 1, 1, 0, -1, lsRead, false), TRkMatrixException);
}

TEST_P(EntryStorage, widensAnElementToDouble) {
    ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 1, matrix(0.1f), lsReadWrite, false));
    EXPECT_EQ(cubes().Get(1, 1, 1, 1, 1, 0, 0, lsRead, false), static_cast<double>(0.1f));
}

TEST_P(EntryStorage, readsAHeaderAlone) {
    storeBase();
    TRkMatrixHeader const* const header = cubes().GetHeader("Base", 0, 0, 0, 0, true);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->Rows(), 2);
    EXPECT_EQ(header->Columns(), 3);
    EXPECT_EQ(header->Type(), mtMatrixCube);
    EXPECT_EQ(cubes().GetHeader("Base", 1, 1, 1, 2, false), nullptr);
    EXPECT_EQ(cubes().GetHeader("Other", 1, 1, 1, 1, false), nullptr);
}

TEST_P(EntryStorage, savesNothingOntoTheMatrixsOwnFile) {
    storeBase();
    for (int const lock : {0, 1, 8}) {
        auto const own = open(static_cast<RkLockState>(lock));
        ASSERT_TRUE(own);
        own->RowAt(0, 8)[0] = 99;
        std::string const before = readFile(pathOf("1-1-1-1-1.odm"));
        EXPECT_FALSE(cubes().SaveMatrix(*own, 1, 1, 1, 1, 1, lsReadWrite, false)) << lock;
        EXPECT_FALSE(cubes().Set(1, 1, 1, 1, 1, *own, lsReadWrite, false)) << lock;
        EXPECT_EQ(readFile(pathOf("1-1-1-1-1.odm")), before) << lock;
    }
}

TEST_P(EntryStorage, savesAChangedMatrixOntoItsOwnFile) {
    storeBase();
    auto const own = open(lsChanged);
    ASSERT_TRUE(own);
    own->RowAt(0, 8)[0] = 99;
    EXPECT_TRUE(cubes().SaveMatrix(*own, 1, 1, 1, 1, 1, lsReadWrite, false));
    EXPECT_EQ(firstElement(1, 1, 1, 1, 1), 99.0);
}

TEST_P(EntryStorage, byNameWritesAChangedMatrixThatLivesInTheEntrysOwnFile) {
    storeBase();
    auto const own = open(lsChanged);
    ASSERT_TRUE(own);
    own->RowAt(0, 8)[0] = 99;
    EXPECT_TRUE(cubes().Set("Base", 1, 1, 1, 1, *own, lsReadWrite, false));
    EXPECT_EQ(firstElement(1, 1, 1, 1, 1), 99.0);
}

TEST_P(EntryStorage, copiesTheFileOfAnUnchangedMatrixAndGivesFalse) {
    storeBase();
    auto const source = open(lsUnchanged);
    ASSERT_TRUE(source);
    writeFile(pathOf("2-1-1-1-1.odm"), "replaced");
    EXPECT_FALSE(cubes().SaveMatrix(*source, 2, 1, 1, 1, 1, lsReadWrite, false));
    EXPECT_EQ(readFile(pathOf("2-1-1-1-1.odm")), readFile(pathOf("1-1-1-1-1.odm")));
}

TEST_P(EntryStorage, writesAnUnchangedMatrixWhoseFileIsGone) {
    TempDir const elsewhere;
    storeBase();
    auto const source = open(lsUnchanged);
    ASSERT_TRUE(source);
    std::filesystem::rename(pathOf("1-1-1-1-1.odm"), elsewhere.file("1-1-1-1-1.odm"));
    EXPECT_TRUE(cubes().SaveMatrix(*source, 1, 1, 1, 1, 2, lsReadWrite, false));
    cubes().Add("Base", 1, 1, 1, 2, false);
    EXPECT_EQ(firstElement(1, 1, 1, 1, 2), 1.0);
}

TEST_P(EntryStorage, keepsAKindAbove31AndReplacesAnyOther) {
    struct {
        int source;
        unsigned stored;
    } const kinds[] = {{0, 0}, {5, 0}, {31, 0}, {32, 32}, {1000, 1000}, {-1, 0xFFFFFFFFu}};
    for (auto const& kind : kinds) {
        TRkMatrix source = matrix(1);
        source.MatrixKind(static_cast<RkMatrixKind>(kind.source));
        ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 1, source, lsReadWrite, false));
        EXPECT_EQ(cubes().GetHeader("Base", 1, 1, 1, 1, false)->Kind(), kind.stored) << kind.source;
    }
}

TEST_P(EntryStorage, keepsZoneNumbers) {
    TRkMatrix square = TRkMatrix::inMemory(2, 2);
    square.SetZones({101, 205});
    ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 1, square, lsReadWrite, false));
    auto const read = open(lsRead);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->Zones(), (std::vector<std::int32_t>{101, 205}));
}

TEST_P(EntryStorage, isFalseWhenTheFileCannotBeMade) {
    TRkMatCubes elsewhere(project().settings(), pathOf("missing").c_str(), ".odm", true);
    EXPECT_FALSE(elsewhere.SaveMatrix(matrix(1), 1, 1, 1, 1, 1, lsReadWrite, false));
    EXPECT_FALSE(std::filesystem::exists(pathOf("missing")));
    std::filesystem::create_directory(pathOf("1-1-1-1-1.odm"));
    EXPECT_FALSE(cubes().SaveMatrix(matrix(1), 1, 1, 1, 1, 1, lsReadWrite, false));
}

TEST_P(EntryStorage, isRefusedToOneThatAnotherObjectHolds) {
    storeBase();
    auto const reader = open(lsRead);
    EXPECT_TRUE(cubes().Set(1, 1, 1, 1, 1, matrix(2), lsReadWrite, false));
    // The reader keeps the state it was opened on.
    EXPECT_EQ(reader->RowAt(0, 8)[0], 1.0f);
    EXPECT_EQ(firstElement(1, 1, 1, 1, 1), 2.0);
}

TEST_P(EntryStorage, ofAnEmptyNameWithoutARegisterWritesNothing) {
    TRkMatCubes none(nullptr, project().matrixDirectory().c_str(), ".odm", true);
    EXPECT_FALSE(none.Set("Base", 1, 1, 1, 1, matrix(1), lsReadWrite, false));
    EXPECT_EQ(files().find(".odm"), std::string::npos);
}

}
}
