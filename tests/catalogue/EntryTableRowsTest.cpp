#include "catalogue/EntryTable.h"

#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/varcubes/TRkSkimCube.h>

#include <array>

#include "catalogue/CatalogueTest.h"

namespace cubes::test {
namespace {

using catalogue::CubeKey;
using catalogue::noParent;
using catalogue::ResultKey;

constexpr CubeKey cubeKey = {1, 2, 3, 4, 5};
constexpr ResultKey resultKey = {-1, 1, 2, 3, 4, 5, 6};
constexpr ResultKey parentKey = {7, 1, 1, 1, 1, -1, -1};

class EntryTableRows : public CatalogueTest {
protected:
    void SetUp() override {
        CatalogueTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        cubes_ = TRkMatCubes(project().settings(), ".odm", true).Open();
        results_ = TRkSkimCube(project().settings(), true).Open();
    }

    catalogue::EntryTable cubes() { return {*cubes_, cubeKey.size()}; }
    catalogue::EntryTable results() { return {*results_, resultKey.size()}; }

private:
    CountedPtr<Rktable::TRkTableProxy> cubes_;
    CountedPtr<Rktable::TRkTableProxy> results_;
};

CUBES_BOTH_BACKENDS(EntryTableRows);

TEST_P(EntryTableRows, readsBackTheRowOfEitherFamily) {
    auto table = cubes();
    ASSERT_TRUE(table.insert(cubeKey, "a.odm"));
    ASSERT_TRUE(table.locate(cubeKey));
    EXPECT_EQ(table.key(), std::vector<short>(cubeKey.begin(), cubeKey.end()));
    EXPECT_EQ(table.parent(), noParent);
    EXPECT_EQ(table.filename(), "a.odm");
    EXPECT_EQ(table.users(), 0);

    auto results = this->results();
    ASSERT_TRUE(results.insert(resultKey, "b.skm", parentKey));
    ASSERT_TRUE(results.locate(resultKey));
    EXPECT_EQ(results.key(), std::vector<short>(resultKey.begin(), resultKey.end()));
    EXPECT_EQ(results.parent(), parentKey);
    EXPECT_EQ(results.path("/d/"), "/d/b.skm");
}

TEST_P(EntryTableRows, refusesASecondRowWithTheSameKeyAndKeepsTheFirst) {
    ASSERT_TRUE(cubes().insert(cubeKey, "first.odm"));
    EXPECT_FALSE(cubes().insert(cubeKey, "second.odm"));
    auto table = cubes();
    ASSERT_TRUE(table.locate(cubeKey));
    EXPECT_EQ(table.filename(), "first.odm");
}

TEST_P(EntryTableRows, changesAParentUnlessTheRowWasDeleted) {
    ASSERT_TRUE(results().insert(resultKey, "b.skm"));
    auto table = results();
    ASSERT_TRUE(table.locate(resultKey));
    EXPECT_TRUE(table.changeParent(parentKey));
    EXPECT_EQ(table.parent(), parentKey);
    project().execute("delete from " + project().database().table(project().project().schema(), "cube5data1"));
    EXPECT_FALSE(table.changeParent(noParent));
}

TEST_P(EntryTableRows, countsUsersDownToZero) {
    ASSERT_TRUE(cubes().insert(cubeKey, "a.odm"));
    auto table = cubes();
    ASSERT_TRUE(table.locate(cubeKey));
    EXPECT_TRUE(table.raiseUsers());
    EXPECT_TRUE(table.raiseUsers());
    EXPECT_EQ(table.users(), 2);
    for (long const left : {1, 0, 0}) {
        EXPECT_TRUE(table.lowerUsers());
        EXPECT_EQ(table.users(), left);
    }
}

TEST_P(EntryTableRows, removesTheRowAndReturnsItsFileName) {
    ASSERT_TRUE(cubes().insert(cubeKey, "a.odm"));
    auto table = cubes();
    ASSERT_TRUE(table.locate(cubeKey));
    EXPECT_EQ(table.remove("/d/"), "/d/a.odm");
    EXPECT_FALSE(cubes().locate(cubeKey));
}

}
}
