#include "host/database/sqlite/WriterQueue.h"

#include "host/platform/Files.h"
#include "support/ChildTask.h"
#include "support/TempDir.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkTableProxy.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <limits>
#include <thread>
#include <vector>

namespace {

using cubes::database::sqlite::WriterQueue;
using cubes::platform::ByteLock;
using cubes::test::TempDir;
using std::chrono::seconds;
using std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr std::uint64_t last = std::numeric_limits<std::int64_t>::max();

// Places are numbered by the time of arrival.
std::uint64_t now() {
    auto const time = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(time).count());
}

/// A time after all places that were taken before: some clocks advance in steps.
std::uint64_t nextMoment() {
    auto const before = now();
    while (now() <= before) std::this_thread::yield();
    return now();
}

/// Waits until somebody has queued since that time.
void awaitArrivalSince(std::uint64_t time, std::string const& database) {
    auto const probe = ByteLock::tryTake(database + "-queue", last);
    auto const end = steady_clock::now() + seconds(20);
    while (!probe->isHeldByOthers(time, last - time)) {
        ASSERT_LT(steady_clock::now(), end) << "nobody queues";
        std::this_thread::yield();
    }
}

void enter(WriterQueue& place) {
    place.begin();
    place.enter();
}

class SqliteQueue : public testing::Test {
protected:
    SqliteQueue() { cubes::test::writeFile(database, ""); }
    WriterQueue place(std::chrono::milliseconds longestWait = seconds(20)) const { return {database, longestWait}; }

    TempDir directory;
    std::string database = directory.file("cubes.db");
};

TEST_F(SqliteQueue, servesInTheOrderOfArrival) {
    auto first = place();
    enter(first);
    std::vector<int> served;
    std::vector<std::jthread> waiting;
    for (int number = 1; number <= 5; ++number) {
        auto const before = nextMoment();
        waiting.emplace_back([this, number, &served] {
            auto own = place();
            enter(own);
            served.push_back(number);
            own.leave(false);
        });
        awaitArrivalSince(before, database);
    }
    EXPECT_EQ(served, std::vector<int>());
    first.leave(false);
    waiting.clear();
    EXPECT_EQ(served, (std::vector<int>{1, 2, 3, 4, 5}));
}

TEST_F(SqliteQueue, keepsTheTurnInsideATransaction) {
    auto first = place();
    enter(first);
    first.leave(true);
    auto second = place(std::chrono::milliseconds(20));
    enter(second);
    for (int attempt = 0; second.waitForLocks(attempt);) ++attempt;
    EXPECT_FALSE(second.waitForLocks(0)) << "the limit began anew";
    first.leave(false);
    second.leave(false);
    auto third = place();
    enter(third);
    EXPECT_TRUE(third.waitForLocks(0));
}

TEST_F(SqliteQueue, leavesTimeForTheLocksBehindAProcessThatWasStopped) {
    auto const stopped = ByteLock::tryTake(database + "-queue", 1);
    std::vector<std::jthread> writers;
    for (int i = 0; i < 3; ++i)
        writers.emplace_back([this] {
            auto own = place(seconds(1));
            enter(own);
            EXPECT_TRUE(own.waitForLocks(0));
        });
    writers.clear();
    EXPECT_FALSE(stopped->isHeldByOthers(2, last - 2)) << "a place was kept";
}

cubes::test::ChildTask const dyingInTheQueue("dying in the queue", [](int, std::string const& database) {
    WriterQueue place(database, seconds(20));
    enter(place);
    cubes::test::killThisProcess();
});

TEST_F(SqliteQueue, forgetsAProcessThatWasKilled) {
    EXPECT_EQ(dyingInTheQueue.inProcesses(1, database), 0);
    auto own = place();
    enter(own);
    EXPECT_TRUE(own.waitForLocks(0));
}

TEST_F(SqliteQueue, isNotNeededToWrite) {
    WriterQueue nowhere(directory.file("none/cubes.db"), seconds(20));
    enter(nowhere);
    EXPECT_TRUE(nowhere.waitForLocks(0));
    nowhere.removeFile();
    fs::create_directory(database + "-queue");
    auto own = place();
    enter(own);
    EXPECT_TRUE(own.waitForLocks(0));
}

TEST_F(SqliteQueue, keepsItsFileWhileOthersQueue) {
    auto first = place();
    auto second = place();
    enter(first);
    second.removeFile();
    EXPECT_TRUE(fs::exists(database + "-queue"));
    first.removeFile();
    EXPECT_EQ(cubes::test::listing(directory.str()), "cubes.db\n");
}

TEST_F(SqliteQueue, isOpenToAllWhoMayWriteToTheDatabase) {
    fs::permissions(database, fs::perms(0666));
    auto own = place();
    enter(own);
    EXPECT_EQ(fs::status(database + "-queue").permissions(), fs::status(database).permissions());
}

TEST_F(SqliteQueue, isLeftByNobodyWhoseFileIsRemoved) {
    auto closing = ByteLock::tryTake(database + "-queue", last);
    auto const before = nextMoment();
    {
        std::jthread const waiting([this] {
            auto own = place();
            enter(own);
            auto const probe = ByteLock::tryTake(database + "-queue", last);
            EXPECT_TRUE(probe && probe->isHeldByOthers(0, last)) << "the place is in a file that nobody finds";
        });
        auto const end = steady_clock::now() + seconds(20);
        while (!closing->isHeldByOthers(before, last - before)) {
            ASSERT_LT(steady_clock::now(), end) << "nobody queues";
            std::this_thread::yield();
        }
        EXPECT_TRUE(cubes::platform::discardFile(database + "-queue"));
        closing.reset();
    }
}

TEST_F(SqliteQueue, isNotTheFileThatAPlantedLinkLeadsTo) {
    cubes::test::writeFile(directory.file("other"), "");
    std::error_code failure;
    fs::create_symlink(directory.file("other"), database + "-queue", failure);
    if (failure) GTEST_SKIP() << "SKIPPED: no links for this user here";
    auto own = place();
    enter(own);
    EXPECT_FALSE(ByteLock::tryTake(directory.file("other"), last)->isHeldByOthers(0, last));
    EXPECT_TRUE(own.waitForLocks(0));
}

TEST_F(SqliteQueue, liesBesideTheFileThatALinkLeadsTo) {
    std::error_code failure;
    fs::create_symlink(database, directory.file("link.db"), failure);
    if (failure) GTEST_SKIP() << "SKIPPED: no links for this user here";
    Pgaccess::TPgConnection connection("sqlite:" + directory.file("link.db"));
    connection.Execute("CREATE TABLE t (i integer)");
    EXPECT_TRUE(fs::exists(database + "-queue"));
    EXPECT_FALSE(fs::exists(directory.file("link.db-queue")));
}

constexpr int insertions = 10;

cubes::test::ChildTask const inserting("insert rows", [](int number, std::string const& database) {
    Pgaccess::TPgConnection connection("sqlite:" + database);
    for (int i = 0; i < insertions; ++i)
        connection.Execute("INSERT INTO t VALUES (" + std::to_string(number * insertions + i) + ")");
});

TEST_F(SqliteQueue, servesFourteenProcessesAtOnce) {
    Pgaccess::TPgConnection("sqlite:" + database).Execute("CREATE TABLE t (i integer PRIMARY KEY)");
    EXPECT_EQ(inserting.inProcesses(14, database), 14);
    EXPECT_EQ(cubes::test::listing(directory.str()), "cubes.db\n");
}

// Without the queue, the connection that writes again and again finds the lock free, and the other one asleep.
TEST_F(SqliteQueue, servesAWaitingWriterBeforeOneThatComesAgain) {
    Pgaccess::TPgConnection eager("sqlite:" + database);
    eager.Execute("CREATE TABLE \"cube\" (\"cubenr\" smallint PRIMARY KEY)");
    Rktable::TRkTableProxy table("cube", "", "cube");
    table.SetConnection(&eager);
    table.Open();
    for (int number = 1; number <= 5; ++number) {
        eager.Execute("BEGIN IMMEDIATE");
        auto const before = nextMoment();
        std::jthread const other([this, number] {
            Pgaccess::TPgConnection patient("sqlite:" + database);
            patient.Execute("INSERT INTO \"cube\" VALUES (" + std::to_string(number) + ")");
        });
        awaitArrivalSince(before, database);
        eager.Execute("COMMIT");
        eager.Execute("BEGIN IMMEDIATE");
        EXPECT_TRUE(table.Locate("cubenr", number));
        eager.Execute("COMMIT");
    }
}

}
