#include <cubes/database/TRkDatabaseException.h>

#include "routestorage/RouteCubeTest.h"

namespace cubes::test {
namespace {

class RouteParents : public RouteCubeTest {
protected:
    static std::string parentOf(TRkVarCubes const& cube, short iteration) {
        short p = 9, m = 9, t = 9, u = 9, r = 9, i = 9;
        cube.GetParentPMTURI(1, 2, 3, 4, 5, iteration, p, m, t, u, r, i);
        std::string text = std::to_string(cube.GetParentCubenr(1, 2, 3, 4, 5, iteration)) + ":";
        for (short const part : {p, m, t, u, r, i}) text += " " + std::to_string(part);
        return text;
    }
    static std::string keysIn(Keys const& list) {
        std::string text;
        for (int i = 0; i < list.Count(); ++i)
            text += std::to_string(list[i]->cubenr) + "/" + std::to_string(list[i]->iteration) + " ";
        return text;
    }
    // With an entry of the caller's own in it.
    static Keys listInUse(short cubenr) {
        Keys list;
        list.Add(new TRkVarCubes::TKey(cubenr, 9, 9, 9, 9, 9, 9, 0, -1, -1, -1, -1, -1, -1, false));
        return list;
    }

    FakeProvider fake;
};

CUBES_BOTH_BACKENDS(RouteParents);

constexpr char const* noParent = "0: -1 -1 -1 -1 -1 -1";

TEST_P(RouteParents, areReadFromTheEntry) {
    for (TRkVarCubes* const cube : {static_cast<TRkVarCubes*>(&routes()), static_cast<TRkVarCubes*>(&data())}) {
        EXPECT_EQ(parentOf(*cube, 6), noParent);
        cube->Add(1, 2, 3, 4, 5, 6, -6, 11, 12, 13, 14, 15, 16, false);
        cube->Add(1, 2, 3, 4, 5, 7, 0, -1, -1, -1, -1, -1, -1, false);
        EXPECT_EQ(parentOf(*cube, 6), "-6: 11 12 13 14 15 16");
        EXPECT_EQ(parentOf(*cube, 7), noParent);
        cube->incUsage(1, 2, 3, 4, 5, 6);
        EXPECT_EQ(parentOf(*cube, 6), noParent);
    }
}

TEST_P(RouteParents, areSetInTwoParts) {
    for (TRkVarCubes* const cube : {static_cast<TRkVarCubes*>(&routes()), static_cast<TRkVarCubes*>(&data())}) {
        cube->Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
        EXPECT_TRUE(cube->SetParentCubenr(1, 2, 3, 4, 5, 6, -9));
        EXPECT_EQ(parents(), "-9|NULL|NULL|NULL|NULL|NULL|NULL\n");
        EXPECT_TRUE(cube->SetParentPMTURI(1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, -1));
        EXPECT_EQ(parents(), "-9|11|12|13|14|15|-1\n");
        EXPECT_EQ(parentOf(*cube, 6), "-9: 11 12 13 14 15 -1");
        EXPECT_TRUE(cube->SetParentCubenr(1, 2, 3, 4, 5, 6, 0));
        EXPECT_EQ(parents(), "0|11|12|13|14|15|-1\n");
        cube->Clear();
    }
}

// Only the entry of this very cube is changed, in use or not, and nothing but its parent.
TEST_P(RouteParents, areSetInOneRow) {
    routes().Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
    data().Add(1, 2, 3, 4, 5, 6, 0, -1, -1, -1, -1, -1, -1, false);
    routes().incUsage(1, 2, 3, 4, 5, 6);
    std::string const before = rows();
    EXPECT_TRUE(routes().SetParentCubenr(1, 2, 3, 4, 5, 6, -6));
    EXPECT_TRUE(routes().SetParentPMTURI(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 1));
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n-6|1|1|1|1|1|1\n");
    EXPECT_EQ(rows(), before);
}

TEST_P(RouteParents, ofMissingEntriesAreNotSet) {
    EXPECT_FALSE(routes().SetParentCubenr(1, 2, 3, 4, 5, 6, -9));
    EXPECT_FALSE(routes().SetParentPMTURI(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 1));
    execute("drop table " + table());
    EXPECT_FALSE(routes().SetParentCubenr(1, 2, 3, 4, 5, 6, -9));
    EXPECT_FALSE(routes().SetParentPMTURI(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, 1, 1));
    EXPECT_EQ(parentOf(routes(), 6), noParent);
}

TEST_P(RouteParents, areNotSetInATableWithoutTheirColumns) {
    routes().Add(1, 2, 3, 4, 5, 6, -9, 1, 1, 1, 1, 1, 1, false);
    project().execute("alter table " + table() + " rename column parentuser to other");
    RouteStorageCube cube(project().settings());
    EXPECT_THROW(cube.SetParentPMTURI(1, 2, 3, 4, 5, 6, 2, 2, 2, 2, 2, 2), TRkDatabaseException);
    EXPECT_EQ(read("select parentpurpose, parentcubenr from " + table()), "1|-9\n");
    EXPECT_TRUE(cube.SetParentCubenr(1, 2, 3, 4, 5, 6, -6));
    EXPECT_EQ(read("select parentpurpose, parentcubenr from " + table()), "1|-6\n");
}

class RouteChildren : public RouteParents {
protected:
    void SetUp() override {
        RouteParents::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        store(routes(), 1);
        store(routes(), 2);
        addChild(data(), 11, 1);
        addChild(data(), 12, 1);
        addChild(data(), 13, 2);
        addChild(skims(), 14, 1);
        addChild(routes(), 15, 1);
        fake.calls();
    }
};

CUBES_BOTH_BACKENDS(RouteChildren);

TEST_P(RouteChildren, areTheRouteDataOfASet) {
    Keys list = listInUse(ctRouteData);
    EXPECT_TRUE(routes().GetChilds(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(keysIn(list), "-10/11 -10/12 ");
    EXPECT_TRUE(routes().GetChilds(1, 2, 3, 4, 5, 2, list));
    EXPECT_EQ(keysIn(list), "-10/13 ");
    EXPECT_TRUE(routes().GetChilds(1, 2, 3, 4, 5, 15, list));
    EXPECT_EQ(keysIn(list), "");
}

TEST_P(RouteChildren, ofAnEntryThatIsMissingOrInUseAreNotListed) {
    Keys list = listInUse(ctRouteData);
    EXPECT_FALSE(routes().GetChilds(1, 2, 3, 4, 5, 3, list));
    EXPECT_EQ(keysIn(list), "");
    routes().incUsage(1, 2, 3, 4, 5, 1);
    list = listInUse(ctRouteData);
    EXPECT_FALSE(routes().GetChilds(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(keysIn(list), "");
}

TEST_P(RouteChildren, inUseAreSkipped) {
    data().incUsage(1, 2, 3, 4, 5, 12);
    Keys list;
    EXPECT_TRUE(routes().GetChilds(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(keysIn(list), "-10/11 ");
    routes().DeleteChildren(data(), 1, 2, 3, 4, 5, 1);
    EXPECT_FALSE(data().Check(1, 2, 3, 4, 5, 11, false));
    EXPECT_TRUE(data().Check(1, 2, 3, 4, 5, 12, false));
}

TEST_P(RouteChildren, canBeListedOfAnyEntryBehindOthers) {
    routes().incUsage(1, 2, 3, 4, 5, 1);
    Keys list = listInUse(ctRouteData);
    EXPECT_TRUE(routes().GetChildsAll(1, 2, 3, 4, 5, 1, list));
    EXPECT_EQ(keysIn(list), "-10/9 -10/11 -10/12 ");
    EXPECT_TRUE(routes().GetChildsAll(1, 2, 3, 4, 5, 2, list));
    EXPECT_EQ(keysIn(list), "-10/9 -10/11 -10/12 -10/13 ");
    list = listInUse(ctSkim);
    EXPECT_TRUE(routes().GetChildsAll(9, 9, 9, 9, 9, 9, list));
    EXPECT_EQ(keysIn(list), "");
}

TEST_P(RouteChildren, areDeletedWithTheirFiles) {
    for (short const child : {short(11), short(12), short(13)}) writeFile(dataFile(child), "values");
    routes().DeleteChildren(data(), 1, 2, 3, 4, 5, 1);
    EXPECT_EQ(filesIn(pathOf("RouteStorage_RouteData")), "1-2-3-4-5-13.FDB\n");
    EXPECT_FALSE(data().Check(1, 2, 3, 4, 5, 11, false));
    EXPECT_FALSE(data().Check(1, 2, 3, 4, 5, 12, false));
    EXPECT_TRUE(data().Check(1, 2, 3, 4, 5, 13, false));
    EXPECT_TRUE(skims().Check(1, 2, 3, 4, 5, 14, false));
    EXPECT_TRUE(routes().Check(1, 2, 3, 4, 5, 1, false));
    EXPECT_TRUE(routes().Check(1, 2, 3, 4, 5, 15, false));
    EXPECT_EQ(fake.calls(), "");
}

TEST_P(RouteChildren, ofAnEntryInUseAreNotDeleted) {
    routes().incUsage(1, 2, 3, 4, 5, 1);
    routes().DeleteChildren(data(), 1, 2, 3, 4, 5, 1);
    EXPECT_TRUE(data().Check(1, 2, 3, 4, 5, 11, false));
}

TEST_P(RouteChildren, areNoneOfRouteData) {
    data().Add(1, 2, 3, 4, 5, 20, ctRouteData, 1, 2, 3, 4, 5, 11, false);
    Keys list = listInUse(ctRouteData);
    EXPECT_FALSE(data().GetChilds(1, 2, 3, 4, 5, 11, list));
    EXPECT_EQ(list.Count(), 0);
    data().DeleteChildren(data(), 1, 2, 3, 4, 5, 11);
    EXPECT_TRUE(data().Check(1, 2, 3, 4, 5, 20, false));
    EXPECT_TRUE(data().GetChildsAll(1, 2, 3, 4, 5, 11, list));
    EXPECT_EQ(keysIn(list), "-10/20 ");
}

}
}
