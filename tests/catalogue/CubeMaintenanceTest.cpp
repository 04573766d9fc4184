#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkDatabaseException.h>

#include "catalogue/CatalogueTest.h"

namespace cubes::test {
namespace {

class CubeMaintenance : public CatalogueTest {};

CUBES_BOTH_BACKENDS(CubeMaintenance);

TEST_P(CubeMaintenance, numbersTheFirstCubeOne) {
    EXPECT_TRUE(catalogue().Add("Base"));
    EXPECT_EQ(rows(), "1|Base\n");
}

TEST_P(CubeMaintenance, numbersANewCubeAboveTheHighest) {
    project().execute("insert into cube (cubenr, name) values (7, 'Seven'), (3, 'Three')");
    EXPECT_TRUE(catalogue().Add("Eight"));
    EXPECT_EQ(rows(), "3|Three\n7|Seven\n8|Eight\n");
}

TEST_P(CubeMaintenance, startsAtOneAboveReservedNumbers) {
    project().execute("insert into cube (cubenr, name) values (-1, 'SkimCube'), (-6, 'PathCube')");
    EXPECT_TRUE(catalogue().Add("Base"));
    EXPECT_EQ(rows(), "-6|PathCube\n-1|SkimCube\n1|Base\n");
}

TEST_P(CubeMaintenance, reusesTheHighestNumberOnlyWhenItWasFreed) {
    for (char const* const name : {"A", "B", "C"}) catalogue().Add(name);
    EXPECT_TRUE(catalogue().Clear("B"));
    EXPECT_TRUE(catalogue().Add("D"));
    EXPECT_EQ(rows(), "1|A\n3|C\n4|D\n");
    EXPECT_TRUE(catalogue().Clear(short(4)));
    EXPECT_TRUE(catalogue().Add("E"));
    EXPECT_EQ(rows(), "1|A\n3|C\n4|E\n");
}

TEST_P(CubeMaintenance, addsNothingForANameThatExistsInOtherLetterCase) {
    catalogue().Add("Base");
    EXPECT_TRUE(catalogue().Add("BASE"));
    EXPECT_TRUE(catalogue().Add("Base"));
    EXPECT_EQ(rows(), "1|Base\n");
}

TEST_P(CubeMaintenance, storesALongNameCutAndFindsItAgain) {
    std::string const name(200, 'x');
    EXPECT_TRUE(catalogue().Add(name.c_str()));
    EXPECT_TRUE(catalogue().Add(name.c_str()));
    EXPECT_EQ(rows(), "1|" + name.substr(0, 128) + "\n");
}

TEST_P(CubeMaintenance, takesTheEmptyNameLikeAnyOtherAndNoNullName) {
    EXPECT_FALSE(catalogue().Add(nullptr));
    EXPECT_EQ(rows(), "");
    EXPECT_TRUE(catalogue().Add(""));
    EXPECT_TRUE(catalogue().Add(""));
    EXPECT_EQ(rows(), "1|\n");
}

TEST_P(CubeMaintenance, addsNothingWhenTheNumbersAreUsedUp) {
    project().execute("insert into cube (cubenr, name) values (32767, 'Last')");
    EXPECT_FALSE(catalogue().Add("OneMore"));
    EXPECT_TRUE(catalogue().Add("last"));
    EXPECT_EQ(rows(), "32767|Last\n");
}

TEST_P(CubeMaintenance, addsNumbersThatFileNamesOfTheOldFormCannotHold) {
    project().execute("insert into cube (cubenr, name) values (1599, 'x')");
    EXPECT_TRUE(catalogue().Add("y"));
    EXPECT_EQ(catalogue().CubeNameToNr("y"), 1600);
}

TEST_P(CubeMaintenance, checksByNameAndNumber) {
    project().execute("insert into cube (cubenr, name) values (3, 'Base'), (-3, 'CordonCube')");
    EXPECT_TRUE(catalogue().Check("base"));
    EXPECT_TRUE(catalogue().Exist("Base"));
    EXPECT_FALSE(catalogue().Check("Other"));
    EXPECT_FALSE(catalogue().Exist("Other"));
    EXPECT_FALSE(catalogue().Check(static_cast<char const*>(nullptr)));
    EXPECT_TRUE(catalogue().Check(short(3)));
    EXPECT_FALSE(catalogue().Check(short(4)));
    // Unlike LookUp, Check searches a negative number like any other.
    EXPECT_TRUE(catalogue().Check(short(-3)));
    EXPECT_FALSE(catalogue().Check(short(-4)));
}

TEST_P(CubeMaintenance, clearsTheRowAloneAndSaysWhetherItWasThere) {
    for (char const* const name : {"A", "B", "C", "D"}) catalogue().Add(name);
    EXPECT_TRUE(catalogue().Clear("a"));
    EXPECT_FALSE(catalogue().Clear("a"));
    EXPECT_TRUE(catalogue().Clear(short(2)));
    EXPECT_FALSE(catalogue().Clear(short(2)));
    EXPECT_TRUE(catalogue().Delete("C"));
    EXPECT_FALSE(catalogue().Delete("C"));
    EXPECT_TRUE(catalogue().Remove("D"));
    EXPECT_FALSE(catalogue().Remove("D"));
    EXPECT_FALSE(catalogue().Clear(static_cast<char const*>(nullptr)));
    EXPECT_EQ(rows(), "");
}

TEST_P(CubeMaintenance, listsAllCubesIntoAnEmptiedList) {
    TRkAutoListT<TRkBaseCubes::TKey> list;
    list.Add(new TRkBaseCubes::TKey(99, "left over"));
    EXPECT_TRUE(catalogue().Get(list));
    EXPECT_EQ(list.Count(), 0);
    project().execute("insert into cube (cubenr, name) values (7, 'Seven'), (-1, 'SkimCube'), (3, 'Three')");
    EXPECT_TRUE(catalogue().Get(list));
    ASSERT_EQ(list.Count(), 3);
    EXPECT_STREQ(list[0]->AsString().c_str(), "-1,SkimCube");
    EXPECT_STREQ(list[1]->AsString().c_str(), "3,Three");
    EXPECT_STREQ(list[2]->AsString().c_str(), "7,Seven");
}

TEST_P(CubeMaintenance, passesADatabaseErrorOn) {
    project().project().connection()->Execute("alter table cube rename column name to label");
    EXPECT_THROW(catalogue().Check("Base"), TRkDatabaseException);
    EXPECT_THROW(catalogue().Add("Base"), TRkDatabaseException);
}

}
}
