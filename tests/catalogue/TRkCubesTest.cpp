#include <cubes/catalogue/TRkCubes.h>
#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/project/TRkGlobalSettings.h>

#include "catalogue/CatalogueTest.h"

namespace cubes::test {
namespace {

class CubeKinds : public CatalogueTest {};

CUBES_BOTH_BACKENDS(CubeKinds);

constexpr char const* reservedRows =
    "-6|PathCube\n-5|TransitCube\n-4|ScreenCube\n-3|CordonCube\n-2|SelectedLinkCube\n-1|SkimCube\n";

TEST_P(CubeKinds, constructionAddsTheReservedRowsOnce) {
    EXPECT_EQ(rows(), "");
    TRkCubes const kinds(project().settings());
    EXPECT_EQ(rows(), reservedRows);
    TRkCubes const again(project().settings());
    EXPECT_EQ(rows(), reservedRows);
}

TEST_P(CubeKinds, leavesAReservedRowOfAnotherNameAndAddsTheOthers) {
    project().execute("insert into cube (cubenr, name) values (-3, 'Mine')");
    TRkCubes const kinds(project().settings());
    EXPECT_EQ(rows(), "-6|PathCube\n-5|TransitCube\n-4|ScreenCube\n-3|Mine\n-2|SelectedLinkCube\n-1|SkimCube\n");
}

TEST_P(CubeKinds, userCubesStillStartAtOne) {
    TRkCubes const kinds(project().settings());
    EXPECT_TRUE(kinds.Add("Base"));
    EXPECT_EQ(kinds.CubeNameToNr("Base"), 1);
}

TEST_P(CubeKinds, listsReservedRowsWithUserCubes) {
    TRkCubes const kinds(project().settings());
    kinds.Add("Base");
    TRkAutoListT<TRkBaseCubes::TKey> list;
    EXPECT_TRUE(kinds.Get(list));
    ASSERT_EQ(list.Count(), 7);
    EXPECT_STREQ(list[0]->AsString().c_str(), "-6,PathCube");
    EXPECT_STREQ(list[6]->AsString().c_str(), "1,Base");
}

TEST_P(CubeKinds, initReturnsWhetherTheRegisterCouldBeOpened) {
    TRkCubes kinds(project().settings());
    EXPECT_TRUE(kinds.Init());
    TRkCubes none(nullptr);
    EXPECT_FALSE(none.Init());
    EXPECT_FALSE(none.Check("SkimCube"));
    TRkAutoListT<TRkBaseCubes::TKey> list;
    list.Add(new TRkBaseCubes::TKey(99, "left over"));
    EXPECT_FALSE(none.Get(list));
    EXPECT_EQ(list.Count(), 0);
}

TEST_P(CubeKinds, copiesWorkOnTheSameRegisterAndAddNoReservedRows) {
    TRkCubes const kinds(project().settings());
    project().execute("delete from cube where cubenr < -1");
    TRkCubes const copy(kinds);
    TRkCubes assigned(nullptr);
    assigned = kinds;
    EXPECT_EQ(rows(), "-1|SkimCube\n");
    EXPECT_TRUE(copy.Check(short(-1)) && assigned.Check(short(-1)));
    EXPECT_FALSE(copy.Check(short(-2)) || assigned.Check(short(-2)));
    EXPECT_TRUE(copy.Add("Base"));
    EXPECT_TRUE(assigned.Add("Other"));
    EXPECT_EQ(rows(), "-1|SkimCube\n1|Base\n2|Other\n");
    EXPECT_EQ(kinds.CubeNameToNr("Other"), 2);
    EXPECT_EQ(copy.ClassID(), 0);
    EXPECT_STREQ(copy.ClassName(), "TRkCubes");
}

TEST_P(CubeKinds, theConstructorPassesOnADatabaseError) {
    project().project().connection()->Execute("alter table cube rename column name to label");
    EXPECT_THROW(TRkCubes(project().settings()), TRkDatabaseException);
}

TEST(CubeKindTables, haveTheSameLengthAndFixedContents) {
    char const* const names[] = {"SkimCube", "SelectedLinkCube", "CordonCube", "ScreenCube", "TransitCube", "PathCube"};
    for (int row = 0; row < 6; ++row) {
        EXPECT_STREQ(TRkCubes::CubeNames[row], names[row]);
        EXPECT_EQ(TRkCubes::CubeTypes[row], -1 - row);
    }
}

}
}
