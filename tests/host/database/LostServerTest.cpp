#include "host/database/TableTest.h"
#include "host/database/Transaction.h"
#include "support/TestServer.h"

namespace {

using cubes::test::Backend;
using cubes::test::messageOf;
using cubes::test::Rows;
using cubes::test::sqlStateOf;

class LostServer : public cubes::test::TableTest {
protected:
    void loseConnection() {
        database->execute("SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                          "WHERE datname = current_database() AND pid <> pg_backend_pid()");
    }
};
INSTANTIATE_TEST_SUITE_P(, LostServer, testing::Values(Backend::postgres), [](auto const&) { return "postgres"; });

class PreparedStatements : public LostServer {
protected:
    long long onServer() {
        cubes::database::Cells cells;
        connection->Backend().prepareOnce("SELECT count(*) FROM pg_prepared_statements", {})->run({}, cells);
        return cells.row(0, 1)[0].Number();
    }
    void lookUpInNewTable() {
        connection->Execute("CREATE TABLE short (number smallint PRIMARY KEY)");
        Rktable::TRkTableProxy own("short", "", "short");
        own.SetConnection(&*connection);
        own.Open();
        EXPECT_FALSE(own.Locate("number", 1));
        own.Close();
        connection->Execute("DROP TABLE short");
    }
};
INSTANTIATE_TEST_SUITE_P(
    , PreparedStatements, testing::Values(Backend::postgres), [](auto const&) { return "postgres"; });

TEST_P(PreparedStatements, areRemovedFromTheServerWithTheirTable) {
    for (int i = 0; i < 10; ++i) lookUpInNewTable();
    EXPECT_LE(onServer(), 4);
}

TEST_P(PreparedStatements, areFewHoweverLongAWalkIs) {
    connection->Execute("CREATE TABLE pairs (a smallint, b smallint, PRIMARY KEY (a, b))");
    database->execute("INSERT INTO pairs SELECT a, b FROM generate_series(1, 60) a, generate_series(1, a * 7) b");
    Rktable::TRkTableProxy pairs("pairs", "", "pairs");
    pairs.SetConnection(&*connection);
    pairs.Open();
    int rows = 0;
    long last = 0;
    for (; !pairs.GetEof(); pairs.Next(), ++rows) {
        long const number = pairs.FieldByName("a")->AsInteger() * 1000 + pairs.FieldByName("b")->AsInteger();
        EXPECT_LT(last, number);
        last = number;
    }
    EXPECT_EQ(rows, 7 * 60 * 61 / 2);
    EXPECT_LE(onServer(), 6);
}

TEST_P(LostServer, isReportedOnceAndThenReconnected) {
    fill(3);
    ASSERT_TRUE(table.Locate("cubenr", 2));
    loseConnection();
    std::string const message = messageOf([&] { table.Locate("cubenr", 2); });
    EXPECT_NE(message.find("PostgreSQL server '"), std::string::npos) << message;
    EXPECT_NE(message.find("the connection is lost"), std::string::npos) << message;
    EXPECT_TRUE(table.Locate("cubenr", 2));
    add(4, "four");
    EXPECT_EQ(rows().size(), 4u);
}

TEST_P(LostServer, doesNotInterruptAWalk) {
    fill(3000);
    table.First();
    for (int i = 0; i < 100; ++i) table.Next();
    ASSERT_FALSE(table.GetEof());
    loseConnection();
    EXPECT_THROW(walk(), TRkDatabaseException);
    EXPECT_EQ(walk().back(), 3000);
}

TEST_P(LostServer, endsTheTransaction) {
    {
        cubes::database::ExclusiveAccess access(table);
        add(1, "one");
        loseConnection();
        EXPECT_EQ(sqlStateOf([&] { add(2, "two"); }), "08006");
        // A new connection would work outside of the transaction.
        EXPECT_EQ(sqlStateOf([&] { add(3, "three"); }), "08007");
        EXPECT_EQ(sqlStateOf([&] { access.commit(); }), "08007");
    }
    EXPECT_EQ(rows(), Rows());
    add(4, "four");
    EXPECT_EQ(rows(), (Rows{{"4", "four", "NULL"}}));
}

TEST_P(LostServer, endsTheCallersTransactionUntilItIsRolledBack) {
    connection->Execute("BEGIN");
    add(1, "one");
    loseConnection();
    EXPECT_EQ(sqlStateOf([&] { add(2, "two"); }), "08006");
    EXPECT_EQ(sqlStateOf([&] { cubes::database::ExclusiveAccess{table}; }), "08007");
    EXPECT_EQ(sqlStateOf([&] { connection->Execute("COMMIT"); }), "08007");
    connection->Execute("ROLLBACK");
    add(3, "three");
    EXPECT_EQ(rows(), (Rows{{"3", "three", "NULL"}}));
}

TEST(StoppedServer, postgresIsAnErrorUntilItIsStartedAgain) {
    cubes::test::requireBackend(Backend::postgres);
    if (testing::Test::IsSkipped() || testing::Test::HasFatalFailure()) return;
    cubes::test::TestServer server;
    Pgaccess::TPgConnection connection(server.url());
    connection.Execute("CREATE TABLE \"t\" (\"n\" integer PRIMARY KEY)");
    connection.Execute("INSERT INTO \"t\" VALUES (1)");
    Rktable::TRkTableProxy table("t", "", "t");
    table.SetConnection(&connection);
    table.Open();
    ASSERT_TRUE(table.Locate("n", 1));
    server.stop();
    for (int i = 0; i < 3; ++i) {
        std::string const message = messageOf([&] { table.Locate("n", 1); });
        EXPECT_NE(message.find(":" + server.port() + "', database 'postgres'"), std::string::npos) << message;
    }
    server.start();
    EXPECT_TRUE(table.Locate("n", 1));
    table.Open();
    EXPECT_FALSE(table.GetEof());
}

}
