#include "host/database/TableTest.h"
#include "host/database/Transaction.h"
#include "support/Forked.h"

namespace {

using cubes::test::Backend;
using cubes::test::inProcesses;
using cubes::test::Rows;
using cubes::test::sqlStateOf;

class Fork : public cubes::test::TableTest {};
CUBES_BOTH_BACKENDS(Fork);

TEST_P(Fork, leavesTheParentsConnectionAlone) {
    fill(2);
    ASSERT_TRUE(table.Locate("cubenr", 1));
    EXPECT_EQ(inProcesses(2,
                  [this](int number) {
                      if (backend() == Backend::postgres) return add(10 + number, "child");
                      EXPECT_EQ(sqlStateOf([&] { table.Locate("cubenr", 2); }), "08003");
                      connection.reset();
                  }),
        2);
    ASSERT_TRUE(table.Locate("cubenr", 2));
    add(3, "parent");
    EXPECT_EQ(rows().size(), backend() == Backend::postgres ? 5u : 3u);
}

TEST_P(Fork, isRefusedInsideATransaction) {
    {
        cubes::database::ExclusiveAccess access(table);
        add(1, "parent");
        EXPECT_EQ(inProcesses(1, [this](int) { EXPECT_EQ(sqlStateOf([&] { add(2, "child"); }), "08003"); }), 1);
        access.commit();
    }
    EXPECT_EQ(rows(), (Rows{{"1", "parent", "NULL"}}));
}

}
