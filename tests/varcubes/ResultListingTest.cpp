#include <cubes/catalogue/TRkCubes.h>

#include <stdexcept>

#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

using Keys = TRkAutoListT<TRkVarCubes::TKey>;

class ResultListing : public VarCubesTest {
protected:
    void SetUp() override {
        VarCubesTest::SetUp();
        if (!IsSkipped()) paths_.emplace(project().settings(), true);
    }
    TRkPathCube& paths() { return *paths_; }

    static std::string shown(Keys const& list) {
        std::string text;
        for (int i = 0; i < list.Count(); ++i) text += list[i]->AsString().str() + "\n";
        return text;
    }
    static std::string shownParents(Keys const& list) {
        std::string text;
        for (int i = 0; i < list.Count(); ++i) {
            for (int part = 0; part < 7; ++part) text += std::to_string((*list[i])[part]) + (part < 6 ? "|" : "\n");
        }
        return text;
    }
    static Keys withOneKey() {
        Keys list;
        list.Add(new TRkVarCubes::TKey(99, 9, 9, 9, 9, 9, 9, 0, -1, -1, -1, -1, -1, -1, true));
        return list;
    }

private:
    std::optional<TRkPathCube> paths_;
};

CUBES_BOTH_BACKENDS(ResultListing);

TEST_P(ResultListing, ofACubeHasItsOwnEntriesInKeyOrderWithFileNames) {
    add(paths(), 1);
    add(skims(), 10);
    add(skims(), 2);
    skims().Add(1, 1, 1, 1, -3, 9, 0, -1, -1, -1, -1, -1, -1, false);
    skims().incUsage(1, 1, 1, 1, 1, 2);
    execute("update " + table() + " set filename = 'mine.skm' where iteration = 10");
    Keys list = withOneKey();
    EXPECT_TRUE(skims().Get(list));
    EXPECT_EQ(shown(list), "-1,1,1,1,1,-3,9,1-1-1-1--3-9.skm\n"
                           "-1,1,1,1,1,1,2,1-1-1-1-1-2.skm\n"
                           "-1,1,1,1,1,1,10,mine.skm\n");
    EXPECT_FALSE(list[0]->flag);
}

TEST_P(ResultListing, ofACubeHasParentsWithMinusOneForPartsThatAreNotSet) {
    add(skims(), 1);
    skims().Add(1, 1, 1, 1, 1, 2, -6, 1, -1, 3, 4, 5, 6, false);
    Keys list;
    EXPECT_TRUE(skims().Get(list));
    EXPECT_EQ(shownParents(list), "0|-1|-1|-1|-1|-1|-1\n-6|1|-1|3|4|5|6\n");
}

TEST_P(ResultListing, isSortedWhateverTheOrderOfTheTable) {
    execute("drop table " + table());
    execute("create table " + table() +
            " (cubenr smallint, purpose smallint, mode smallint, time smallint, \"user\" smallint, result smallint,"
            " iteration smallint, filename varchar(255), primary key (filename))");
    for (short const iteration : {short(3), short(1), short(2), short(10)}) add(skims(), iteration);
    execute("update " + table() + " set filename = 'a' where iteration = 10");
    Keys list;
    EXPECT_TRUE(skims().Get(list));
    ASSERT_EQ(list.Count(), 4);
    EXPECT_STREQ(list[3]->AsString().c_str(), "-1,1,1,1,1,1,10,a");
    // No register row has the name of the cube.
    EXPECT_FALSE(skims().GetAllCubes(list));
    ASSERT_EQ(list.Count(), 4);
    EXPECT_EQ(list[0]->iteration, 1);
    EXPECT_EQ(list[3]->iteration, 10);
}

TEST_P(ResultListing, withoutATableIsFalseAndEmpty) {
    skims().setMatrixSchema("nowhere");
    Keys list = withOneKey();
    EXPECT_FALSE(skims().Get(list));
    EXPECT_EQ(list.Count(), 0);
    list = withOneKey();
    EXPECT_FALSE(skims().GetAllCubes(list));
    EXPECT_EQ(list.Count(), 0);
    skims().GetPmturis(-1, 1, 1, 1, 1, 1, 1, list);
    EXPECT_EQ(list.Count(), 0);
}

TEST_P(ResultListing, ofTheRegisterHasAllCubes) {
    TRkCubes const cubes(project().settings());
    TRkAutoListT<TRkBaseCubes::TKey> list;
    EXPECT_TRUE(skims().Get(list));
    EXPECT_EQ(list.Count(), 6);
    EXPECT_STREQ(list[0]->AsString().c_str(), "-6,PathCube");
}

TEST_P(ResultListing, ofAllCubesHasTheCubesNameInPlaceOfTheFileName) {
    TRkCubes const cubes(project().settings());
    add(paths(), 7);
    add(skims(), 1);
    skims().Add(1, 1, 1, 1, 1, 2, -6, 1, 1, 1, 1, 1, 7, false);
    Keys list = withOneKey();
    EXPECT_TRUE(skims().GetAllCubes(list));
    EXPECT_EQ(shown(list), "-6,1,1,1,1,1,7,PathCube\n-1,1,1,1,1,1,1,SkimCube\n-1,1,1,1,1,1,2,SkimCube\n");
    EXPECT_EQ(shownParents(list), "0|-1|-1|-1|-1|-1|-1\n0|-1|-1|-1|-1|-1|-1\n-6|1|1|1|1|1|7\n");
    EXPECT_FALSE(list[0]->flag);
}

TEST_P(ResultListing, ofAllCubesOmitsEntriesInUse) {
    TRkCubes const cubes(project().settings());
    for (short iteration = 1; iteration <= 4; ++iteration) add(skims(), iteration);
    execute("update " + table() + " set \"usageCounter\" = null where iteration = 2");
    execute("update " + table() + " set \"usageCounter\" = 1 where iteration = 3");
    execute("update " + table() + " set \"usageCounter\" = -1 where iteration = 4");
    Keys list;
    EXPECT_TRUE(skims().GetAllCubes(list));
    ASSERT_EQ(list.Count(), 3);
    EXPECT_EQ(list[1]->iteration, 2);
    EXPECT_EQ(list[2]->iteration, 4);
}

TEST_P(ResultListing, ofAllCubesReturnsWhetherTheLastCubeIsKnown) {
    Keys list;
    EXPECT_TRUE(skims().GetAllCubes(list));
    project().execute("insert into cube (cubenr, name) values (-6, 'Paths')");
    add(paths(), 1);
    EXPECT_TRUE(skims().GetAllCubes(list));
    add(skims(), 1);
    EXPECT_FALSE(skims().GetAllCubes(list));
    EXPECT_EQ(shown(list), "-6,1,1,1,1,1,1,Paths\n-1,1,1,1,1,1,1,\n");
    execute("drop table cube");
    EXPECT_FALSE(skims().GetAllCubes(list));
    EXPECT_EQ(shown(list), "-6,1,1,1,1,1,1,\n-1,1,1,1,1,1,1,\n");
}

TEST_P(ResultListing, ofChildrenFindsThemInAllCubesAndAppends) {
    TRkCubes const cubes(project().settings());
    add(skims(), 1);
    skims().Add(1, 1, 1, 1, 1, 2, -1, 1, 1, 1, 1, 1, 1, false);
    paths().Add(1, 1, 1, 1, 1, 3, -1, 1, 1, 1, 1, 1, 1, false);
    Keys list = withOneKey();
    skims().GetPmturis(-1, 1, 1, 1, 1, 1, 1, list);
    EXPECT_EQ(shown(list), "99,9,9,9,9,9,9,\n-6,1,1,1,1,1,3,PathCube\n-1,1,1,1,1,1,2,SkimCube\n");
    EXPECT_EQ((*list[1])[0], -1);
    EXPECT_FALSE(list[1]->flag);
}

TEST_P(ResultListing, ofChildrenNeedsAllSevenPartsToBeEqual) {
    skims().Add(1, 1, 1, 1, 1, 1, -6, 1, 2, 3, 4, 5, 6, false);
    auto const children = [&](short c, short p, short m, short t, short u, short r, short i) {
        Keys list;
        skims().GetPmturis(c, p, m, t, u, r, i, list);
        return list.Count();
    };
    EXPECT_EQ(children(-6, 1, 2, 3, 4, 5, 6), 1);
    short const others[][7] = {{-5, 1, 2, 3, 4, 5, 6}, {-6, 2, 2, 3, 4, 5, 6}, {-6, 1, 3, 3, 4, 5, 6},
        {-6, 1, 2, 4, 4, 5, 6}, {-6, 1, 2, 3, 5, 5, 6}, {-6, 1, 2, 3, 4, 6, 6}, {-6, 1, 2, 3, 4, 5, 7}};
    for (auto const& k : others) EXPECT_EQ(children(k[0], k[1], k[2], k[3], k[4], k[5], k[6]), 0);
    execute("update " + table() + " set \"usageCounter\" = 1");
    EXPECT_EQ(children(-6, 1, 2, 3, 4, 5, 6), 0);
}

// The children can also be found in the list of all free entries: both lists must agree.
TEST_P(ResultListing, ofChildrenAgreesWithTheListOfAllCubes) {
    short const parents[][7] = {{0, -1, -1, -1, -1, -1, -1}, {-6, -1, -1, -1, -1, -1, -1}, {0, 1, 1, 1, 1, 1, 1},
        {-6, 1, 1, 1, 1, 1, 1}, {-6, 1, -1, 1, -1, 1, 1}, {-6, 0, 0, 0, 0, 0, 0}};
    short iteration = 0;
    for (auto const& k : parents)
        for (int times = 0; times < 2; ++times) {
            ++iteration;
            skims().Add(1, 1, 1, 1, 1, iteration, k[0], k[1], k[2], k[3], k[4], k[5], k[6], false);
            // Again with -1 in the row instead of null.
            if (times == 1) skims().Add(1, 1, 1, 1, 1, iteration, k[0], k[1], k[2], k[3], k[4], k[5], k[6], false);
        }
    Keys all;
    skims().GetAllCubes(all);
    for (auto const& k : parents) {
        Keys children;
        skims().GetPmturis(k[0], k[1], k[2], k[3], k[4], k[5], k[6], children);
        Keys expected;
        for (int i = 0; i < all.Count(); ++i) {
            bool same = true;
            for (int part = 0; part < 7; ++part) same = same && (*all[i])[part] == k[part];
            if (same) expected.Add(new TRkVarCubes::TKey(*all[i]));
        }
        EXPECT_EQ(expected.Count(), 2);
        EXPECT_EQ(shown(children), shown(expected));
        EXPECT_EQ(shownParents(children), shownParents(expected));
    }
}

TEST_P(ResultListing, ofAllCubesAndOfChildrenHasEveryEntryIfUsersAreNotCounted) {
    skims().Add(1, 1, 1, 1, 1, 1, -6, 1, 1, 1, 1, 1, 1, false);
    skims().incUsage(1, 1, 1, 1, 1, 1);
    Keys list;
    skims().GetAllCubes(list);
    EXPECT_EQ(list.Count(), 0);
    execute("alter table " + table() + " rename column \"usageCounter\" to uses");
    skims().GetAllCubes(list);
    EXPECT_EQ(list.Count(), 1);
    Keys children;
    skims().GetPmturis(-6, 1, 1, 1, 1, 1, 1, children);
    EXPECT_EQ(shown(children), shown(list));
}

// A cube whose table cannot be opened for a reason of its own.
class Failing : public TRkSkimCube {
public:
    using TRkSkimCube::TRkSkimCube;
    CountedPtr<Rktable::TRkTableProxy> Open() const override { throw std::runtime_error("no table today"); }
};

TEST_P(ResultListing, ofChildrenLeavesTheListUnchangedWhenItFails) {
    Failing const cube(project().settings(), true);
    Keys list = withOneKey();
    EXPECT_THROW(cube.GetPmturis(-1, 1, 1, 1, 1, 1, 1, list), std::runtime_error);
    EXPECT_EQ(shown(list), "99,9,9,9,9,9,9,\n");
}

TEST_P(ResultListing, ofTheRegisterIsFalseAndEmptyWithoutOne) {
    execute("drop table cube");
    TRkAutoListT<TRkBaseCubes::TKey> list;
    list.Add(new TRkBaseCubes::TKey(1, "Base"));
    EXPECT_FALSE(skims().Get(list));
    EXPECT_EQ(list.Count(), 0);
}

TEST_P(ResultListing, ofChildrenIsEmptyWithoutParentColumns) {
    add(skims(), 1);
    execute("alter table " + table() + " rename column parentresult to \"odd\"\"name\"");
    Keys list;
    skims().GetPmturis(0, -1, -1, -1, -1, -1, -1, list);
    EXPECT_EQ(list.Count(), 1);
    skims().GetPmturis(0, -1, -1, -1, -1, 1, -1, list);
    EXPECT_EQ(list.Count(), 1);
}

}
}
