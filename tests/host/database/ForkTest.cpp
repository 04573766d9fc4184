#include "host/database/TableTest.h"
#include "host/database/Transaction.h"
#include "support/Forked.h"

#include <barrier>
#include <thread>

namespace {

using cubes::test::Backend;
using cubes::test::inProcesses;
using cubes::test::Rows;
using cubes::test::sqlStateOf;

class Fork : public cubes::test::TableTest {};
CUBES_BOTH_BACKENDS(Fork);

TEST_P(Fork, doesNotAffectTheParentsConnection) {
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

// Several threads of the child may be the first to use the connection.
TEST_P(Fork, letsThreadsOfTheChildShareItsNewConnection) {
    fill(2);
    auto const useInThreads = [this](int) {
        std::vector<std::string> states(4);
        std::barrier together(static_cast<std::ptrdiff_t>(states.size()));
        {
            std::vector<std::jthread> threads;
            for (auto& state : states)
                threads.emplace_back([&, this] {
                    Rktable::TRkTableProxy own("cube", "", "register");
                    together.arrive_and_wait();
                    state = sqlStateOf([&] {
                        own.SetConnection(&*connection);
                        own.Open();
                        EXPECT_TRUE(own.Locate("cubenr", 2));
                    });
                });
        }
        for (auto const& state : states) EXPECT_EQ(state, backend() == Backend::postgres ? "none" : "08003");
        if (backend() == Backend::sqlite) connection.reset();
    };
    EXPECT_EQ(inProcesses(4, useInThreads), 4);
    EXPECT_TRUE(table.Locate("cubenr", 2));
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
