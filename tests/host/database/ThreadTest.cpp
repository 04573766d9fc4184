#include "host/database/TableTest.h"
#include "host/database/Transaction.h"

#include <atomic>
#include <functional>
#include <thread>

namespace {

using cubes::database::ExclusiveAccess;
using cubes::test::Rows;
using Rktable::TRkTableProxy;

constexpr int threadCount = 8;

// Runs the work in 8 threads and returns how many of them ended without an exception.
int inThreads(std::function<void(int)> const& work) {
    std::atomic<int> good = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number)
        threads.emplace_back([&, number] {
            try {
                work(number);
                ++good;
            } catch (std::exception const& error) {
                ADD_FAILURE() << error.what();
            }
        });
    for (auto& thread : threads) thread.join();
    return good;
}

class Thread : public cubes::test::TableTest {
protected:
    // A cursor of its own on the connection that all share.
    template <typename Work>
    void withCursor(Work const& work) {
        TRkTableProxy own("cube", "", "cube");
        own.SetConnection(&*connection);
        own.Open();
        work(own);
    }
    static void addRow(TRkTableProxy& own, long number) {
        own.Append();
        own.FieldByName("cubenr")->SetAsInteger(number);
        own.FieldByName("name")->SetAsString("new");
        own.Post();
    }
};
CUBES_BOTH_BACKENDS(Thread);

TEST_P(Thread, usesItsOwnCursorOnASharedConnection) {
    fill(100);
    int const good = inThreads([this](int thread) {
        for (int round = 0; round < 5; ++round)
            withCursor([thread](TRkTableProxy& own) {
                long const number = 1000 + thread;
                addRow(own, number);
                EXPECT_EQ(own.FieldByName("cubenr")->AsInteger(), number);
                EXPECT_TRUE(own.Locate("cubenr", number));
                EXPECT_TRUE(own.Raise("usageCounter"));
                EXPECT_EQ(own.FieldByName("usageCounter")->AsInteger(), 1);
                long seen = 0;
                own.SetFilterSQL("\"cubenr\" <= 100");
                for (; !own.GetEof(); own.Next()) seen += own.FieldByName("cubenr")->AsInteger();
                EXPECT_EQ(seen, 5050);
                own.SetFilterSQL("");
                EXPECT_TRUE(own.Locate("cubenr", number));
                own.Delete();
            });
    });
    EXPECT_EQ(good, threadCount);
    EXPECT_EQ(rows().size(), 100u);
}

TEST_P(Thread, staysOutsideTheTransactionsOfOthers) {
    int const good = inThreads([this](int thread) {
        withCursor([thread](TRkTableProxy& own) {
            for (int round = 0; round < 10; ++round) {
                if (thread % 2 == 0) {
                    addRow(own, 100 * thread + round + 1);
                    continue;
                }
                ExclusiveAccess access(own);
                addRow(own, 100 * thread + round + 1);
                std::this_thread::yield();
            }
        });
    });
    EXPECT_EQ(good, threadCount);
    EXPECT_EQ(rows().size(), 40u);
}

// The cursor moves under all threads, so an operation may be refused.
TEST_P(Thread, leavesASharedCursorIntact) {
    fill(200);
    std::atomic<int> refused = 0;
    int const good = inThreads([&](int thread) {
        for (int round = 0; round < 50; ++round) try {
                if (thread == 0 && round % 5 == 0) table.Close();
                if (thread <= 1) table.Open();
                table.Locate("cubenr", round + 1);
                table.Edit();
                table.FieldByName("name")->SetAsString("edited");
                table.Post();
                table.Next();
                table.FieldByName("name")->AsString();
                table.Raise("usageCounter");
                table.First();
            } catch (TRkDatabaseException const& error) {
                EXPECT_EQ(error.SqlState(), "24000") << error.what();
                ++refused;
            }
    });
    EXPECT_EQ(good, threadCount);
    table.Open();
    EXPECT_EQ(walk().size(), 200u) << refused << " operations refused";
}

TEST_P(Thread, readsTheSystemTablesWhileOthersDropTheirCache) {
    fill(3);
    int const good = inThreads([this](int thread) {
        for (int round = 0; round < 30; ++round) {
            if (thread == 0) connection->Execute("DELETE FROM \"cube\" WHERE \"cubenr\" > 3");
            withCursor([](TRkTableProxy& own) { EXPECT_TRUE(own.Locate("name", "n2")); });
        }
    });
    EXPECT_EQ(good, threadCount);
}

}
