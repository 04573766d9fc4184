#include "host/database/TableTest.h"

namespace {

using cubes::test::Rows;
using cubes::test::sqlStateOf;

class Counter : public cubes::test::TableTest {
protected:
    std::string counters() const {
        std::string text;
        for (auto const& row : database->sql("SELECT \"usageCounter\" FROM \"cube\" ORDER BY \"cubenr\""))
            text += row[0] + " ";
        return text;
    }
};
CUBES_BOTH_BACKENDS(Counter);

TEST_P(Counter, isRaisedByOne) {
    database->execute("INSERT INTO \"cube\" VALUES (1, 'a', NULL), (2, 'b', 0), (3, 'c', 7), (4, 'd', -2)");
    for (table.First(); !table.GetEof(); table.Next()) EXPECT_TRUE(table.Raise("usageCounter"));
    EXPECT_EQ(counters(), "1 1 8 -1 ");
}

TEST_P(Counter, isLoweredByOneButNotBelowZero) {
    database->execute("INSERT INTO \"cube\" VALUES (1, 'a', NULL), (2, 'b', 0), (3, 'c', 7), (4, 'd', -2)");
    for (table.First(); !table.GetEof(); table.Next()) EXPECT_TRUE(table.Lower("usageCounter"));
    EXPECT_EQ(counters(), "NULL 0 6 -2 ");
}

TEST_P(Counter, showsItsNewValue) {
    database->execute("INSERT INTO \"cube\" VALUES (1, 'a', 1)");
    ASSERT_TRUE(table.Locate("cubenr", 1));
    database->execute("UPDATE \"cube\" SET \"usageCounter\" = 10");
    EXPECT_TRUE(table.Raise("usageCounter"));
    EXPECT_EQ(table.FieldByName("usageCounter")->AsInteger(), 11);
    EXPECT_TRUE(table.Lower("USAGECOUNTER"));
    EXPECT_EQ(table.FieldByName("usageCounter")->AsInteger(), 10);
}

TEST_P(Counter, staysUnchangedWhenTheRowIsGone) {
    database->execute("INSERT INTO \"cube\" VALUES (1, 'a', 1)");
    ASSERT_TRUE(table.Locate("cubenr", 1));
    database->execute("DELETE FROM \"cube\"");
    EXPECT_FALSE(table.Raise("usageCounter"));
    EXPECT_FALSE(table.Lower("usageCounter"));
    EXPECT_EQ(rows(), Rows());
}

TEST_P(Counter, isAnErrorInATableWithoutOne) {
    database->execute("INSERT INTO \"cube\" VALUES (1, 'a', 1)");
    ASSERT_TRUE(table.Locate("cubenr", 1));
    EXPECT_EQ(sqlStateOf([&] { table.Raise("nothing"); }), "42703");
}

TEST_P(Counter, hasAMaximum) {
    EXPECT_EQ(table.Greatest("cubenr"), std::nullopt);
    database->execute("INSERT INTO \"cube\" VALUES (-3, 'a', NULL), (-7, 'b', NULL)");
    EXPECT_EQ(table.Greatest("cubenr"), -3);
    EXPECT_EQ(table.Greatest("usageCounter"), std::nullopt);
    EXPECT_EQ(sqlStateOf([&] { table.Greatest("nothing"); }), "42703");
}

}
