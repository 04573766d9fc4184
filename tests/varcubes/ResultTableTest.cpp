#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TRkDatabaseException.h>

#include "host/platform/Paths.h"
#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

class ResultTable : public VarCubesTest {
protected:
    bool addWithParent(
        TRkVarCubes& cube, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi) {
        return cube.Add(1, 1, 1, 1, 1, 1, parentcubenr, pp, pm, pt, pu, pr, pi, false);
    }
    /// Replaces the entry table by one with these columns besides the key.
    void defineTable(std::string const& columns) {
        execute("drop table " + table());
        execute("create table " + table() +
                " (cubenr smallint, purpose smallint, mode smallint, time smallint, \"user\" smallint, result smallint,"
                " iteration smallint" +
                columns + ", primary key (cubenr, purpose, mode, time, \"user\", result, iteration))");
    }
};

CUBES_BOTH_BACKENDS(ResultTable);

TEST_P(ResultTable, addsARowWithItsFileNameAndACounterOfZero) {
    EXPECT_TRUE(skims().Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false));
    EXPECT_EQ(rows(), "-1|1|2|3|4|5|6|0|1-2-3-4-5-6.skm\n");
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(files(), "");
}

TEST_P(ResultTable, storesZeroBasedPartsOneHigherButNotResultIterationAndParent) {
    EXPECT_TRUE(skims().Add(0, 1, 0, 0, 5, 2, -6, 0, 1, 2, 3, 4, 5, true));
    EXPECT_EQ(rows(), "-1|1|2|1|1|5|2|0|1-2-1-1-5-2.skm\n");
    EXPECT_EQ(parents(), "-6|0|1|2|3|4|5\n");
    EXPECT_TRUE(skims().Check(0, 1, 0, 0, 5, 2, true));
    EXPECT_TRUE(skims().Check(1, 2, 1, 1, 5, 2, false));
    EXPECT_FALSE(skims().Check(0, 1, 0, 0, 4, 1, true));
    EXPECT_FALSE(skims().Check(1, 2, 1, 1, 5, 2, true));
}

TEST_P(ResultTable, leavesParentPartsOfMinusOneNullInANewRow) {
    EXPECT_TRUE(addWithParent(skims(), 0, 7, -1, 8, -1, -1, 9));
    EXPECT_EQ(parents(), "NULL|7|NULL|8|NULL|NULL|9\n");
    EXPECT_EQ(read("select \"usageCounter\" from " + table()), "0\n");
}

TEST_P(ResultTable, writesParentPartsOfMinusOneIntoARowThatExists) {
    addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6);
    execute("update " + table() + " set \"usageCounter\" = 5, filename = 'mine.skm'");
    EXPECT_TRUE(addWithParent(skims(), -5, 7, -1, 8, -1, -1, 9));
    EXPECT_EQ(parents(), "-5|7|-1|8|-1|-1|9\n");
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|mine.skm\n");
}

TEST_P(ResultTable, findsTheRowThatExistsOfAZeroBasedKeyAndChangesItsParent) {
    add(skims(), 1);
    EXPECT_TRUE(skims().Add(0, 0, 0, 0, 1, 1, -6, 0, 1, 2, 3, 4, 5, true));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_EQ(parents(), "-6|0|1|2|3|4|5\n");
}

TEST_P(ResultTable, leavesTheParentCubeOfARowThatExistsNullForZero) {
    addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6);
    EXPECT_TRUE(addWithParent(skims(), 0, 7, 8, 9, 10, 11, 12));
    EXPECT_EQ(parents(), "NULL|7|8|9|10|11|12\n");
    EXPECT_EQ(read("select \"usageCounter\" from " + table()), "0\n");
}

TEST_P(ResultTable, clearsParentAndCounterOfARowThatExistsWithoutAParentKey) {
    addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6);
    execute("update " + table() + " set \"usageCounter\" = 5");
    EXPECT_TRUE(addWithParent(skims(), 0, -1, -1, -1, -1, -1, -1));
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|NULL|1-1-1-1-1-1.skm\n");
    // The parent cube alone is no parent key.
    EXPECT_TRUE(addWithParent(skims(), -6, -1, -1, -1, -1, -1, -1));
    EXPECT_EQ(parents(), "-6|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(read("select \"usageCounter\" from " + table()), "NULL\n");
}

TEST_P(ResultTable, findsEntriesByTheWholeKeyAndCube) {
    skims().Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
    auto entries = skims().Open();
    EXPECT_TRUE(skims().LookUp(entries, -1, 1, 2, 3, 4, 5, 6, false));
    EXPECT_EQ(entries->FieldByName("result")->AsInteger(), 5);
    EXPECT_TRUE(skims().LookUp(entries, -1, 0, 1, 2, 3, 5, 6, true));
    short const others[][7] = {{-2, 1, 2, 3, 4, 5, 6}, {-1, 2, 2, 3, 4, 5, 6}, {-1, 1, 3, 3, 4, 5, 6},
        {-1, 1, 2, 4, 4, 5, 6}, {-1, 1, 2, 3, 5, 5, 6}, {-1, 1, 2, 3, 4, 6, 6}, {-1, 1, 2, 3, 4, 5, 7}};
    for (auto const& k : others) EXPECT_FALSE(skims().LookUp(entries, k[0], k[1], k[2], k[3], k[4], k[5], k[6], false));
    EXPECT_FALSE(TRkPathCube(project().settings(), true).Check(1, 2, 3, 4, 5, 6, false));
}

TEST_P(ResultTable, givesNothingForAnEmptyCursor) {
    EXPECT_FALSE(skims().LookUp({}, -1, 1, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(skims().Add({}, -1, 1, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, false));
    EXPECT_STREQ(skims().FileName({}, -1, 1, 1, 1, 1, 1, 1, false).c_str(), "");
}

TEST_P(ResultTable, addsForAnyCubeNumberOnAnOpenCursor) {
    auto entries = skims().Open();
    EXPECT_TRUE(skims().Add(entries, 12, 1, 1, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, false));
    EXPECT_EQ(rows(), "12|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_TRUE(skims().LookUp(entries, 12, 1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(skims().FileName(entries, 12, 1, 1, 1, 1, 1, 1, false).str(), pathOf("1-1-1-1-1-1.skm"));
    EXPECT_FALSE(skims().Check(1, 1, 1, 1, 1, 1, false));
}

TEST_P(ResultTable, namesTheFileOfTheRowInTheMatrixDirectory) {
    add(skims(), 1);
    EXPECT_EQ(skims().FileName(0, 0, 0, 0, 1, 1, true).str(), pathOf("1-1-1-1-1-1.skm"));
    EXPECT_STREQ(skims().FileName(1, 1, 1, 1, 1, 2, false).c_str(), "");
    execute("update " + table() + " set filename = 'Sub\\1.skm'");
    std::string const native = std::string("Sub") + platform::pathDelimiter() + "1.skm";
    EXPECT_EQ(skims().FileName(1, 1, 1, 1, 1, 1, false).str(), pathOf(native));
    for (char const* const value : {"null", "''", "'../1.skm'", "'/etc/hosts'", "'.'"}) {
        execute("update " + table() + " set filename = " + value);
        EXPECT_STREQ(skims().FileName(1, 1, 1, 1, 1, 1, false).c_str(), "") << value;
    }
}

TEST_P(ResultTable, leavesNoRowWhenTheNameCannotBeMade) {
    TRkBaseCubes::Version = 3;
    EXPECT_THROW(add(skims(), 1600), TRkCubesException);
    EXPECT_TRUE(add(skims(), 40));
    TRkBaseCubes::Version = 4;
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|40|0|010101010110.skm\n");
}

TEST_P(ResultTable, worksWithTheKeyColumnsAlone) {
    defineTable("");
    EXPECT_TRUE(addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6));
    EXPECT_TRUE(addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6));
    EXPECT_TRUE(skims().Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_STREQ(skims().FileName(1, 1, 1, 1, 1, 1, false).c_str(), "");
    EXPECT_FALSE(skims().incUsage(1, 1, 1, 1, 1, 1));
    EXPECT_FALSE(skims().decUsage(1, 1, 1, 1, 1, 1));
    EXPECT_TRUE(skims().isCorrect(1, 1, 1, 1, 1, 1));
    TRkAutoListT<TRkVarCubes::TKey> list;
    EXPECT_TRUE(skims().Get(list));
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ((*list[0])[0], 0);
    EXPECT_EQ((*list[0])[1], -1);
    EXPECT_TRUE(skims().Clear(1, 1, 1, 1, 1, 1, false));
}

TEST_P(ResultTable, writesNoParentWhenAParentColumnIsMissing) {
    defineTable(", parentcubenr smallint, parentpurpose smallint, filename varchar(255)");
    EXPECT_TRUE(addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6));
    EXPECT_EQ(read("select parentcubenr, parentpurpose, filename from " + table()), "NULL|NULL|1-1-1-1-1-1.skm\n");
}

TEST_P(ResultTable, addsNothingToATableThatLacksAKeyColumnAndGivesTrue) {
    execute("alter table " + table() + " rename column result to outcome");
    EXPECT_TRUE(add(skims(), 1));
    EXPECT_EQ(read("select count(*) from " + table()), "0\n");
    EXPECT_THROW(skims().Check(1, 1, 1, 1, 1, 1, false), TRkDatabaseException);
    TRkAutoListT<TRkVarCubes::TKey> list;
    EXPECT_THROW(skims().Get(list), TRkDatabaseException);
}

TEST_P(ResultTable, hasTheWorkingDirectoryOfTheSettingsOrItsOwn) {
    std::string const delimiter(1, platform::pathDelimiter());
    EXPECT_EQ(skims().MatrixDirectory().str(), directory());
    EXPECT_EQ(directory().back(), platform::pathDelimiter());
    auto const made = [&](char const* own) {
        return TRkSkimCube(project().settings(), own, true).MatrixDirectory().str();
    };
    EXPECT_EQ(made("/data/m"), "/data/m" + delimiter);
    EXPECT_EQ(made(("/data/m" + delimiter).c_str()), "/data/m" + delimiter);
    EXPECT_EQ(made(("/data/m" + delimiter + delimiter).c_str()), "/data/m" + delimiter + delimiter);
    EXPECT_EQ(made(""), directory());
    EXPECT_EQ(made(nullptr), directory());
    skims().MatrixDirectory(TRkFString("/elsewhere"));
    EXPECT_EQ(skims().MatrixDirectory().str(), "/elsewhere" + delimiter);
    skims().MatrixDirectory(TRkFString());
    EXPECT_EQ(skims().MatrixDirectory().str(), "");
    EXPECT_TRUE(skims().FindMatrixDirectory());
    EXPECT_EQ(skims().MatrixDirectory().str(), directory());
    TRkSkimCube without(nullptr, true);
    EXPECT_FALSE(without.FindMatrixDirectory());
    EXPECT_EQ(without.MatrixDirectory().str(), "");
    EXPECT_TRUE(without.Ok());
}

TEST_P(ResultTable, isSharedByCopiesOfACube) {
    add(skims(), 1);
    TRkSkimCube const copy(skims());
    EXPECT_TRUE(copy.Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(copy.MatrixDirectory().str(), directory());
    TRkSkimCube assigned(nullptr, true);
    assigned = skims();
    EXPECT_TRUE(assigned.Check(1, 1, 1, 1, 1, 1, false));
}

}
}
