#include "host/database/TableTest.h"
#include "host/database/Transaction.h"
#include "support/ChildTask.h"
#include "support/Variable.h"

namespace {

using cubes::database::ExclusiveAccess;
using cubes::test::ChildTask;
using cubes::test::Rows;
using cubes::test::sqlStateOf;
using Rktable::TRkTableProxy;

// The objects that each process opens for itself.
struct Opened {
    explicit Opened(std::string const& url) : connection(url) {
        table.SetConnection(&connection);
        table.Open();
    }
    Pgaccess::TPgConnection connection;
    TRkTableProxy table{"cube", "", "cube"};
};

// Adds a row under the highest number plus one.
void addNext(TRkTableProxy& table, std::string const& name) {
    ExclusiveAccess access(table);
    long const number = table.Greatest("cubenr").value_or(0) + 1;
    table.Append();
    table.FieldByName("cubenr")->SetAsInteger(number);
    table.FieldByName("name")->SetAsString(name.c_str());
    table.Post();
    access.commit();
}

constexpr int processes = 4;

ChildTask const raises("raises of a counter", [](int, std::string const& url) {
    Opened opened(url);
    for (int i = 0; i < 50; ++i)
        if (!opened.table.Locate("cubenr", 1) || !opened.table.Raise("usageCounter"))
            throw std::runtime_error("row not found");
});
ChildTask const equalRows("equal rows", [](int number, std::string const& url) {
    Opened opened(url);
    opened.table.Append();
    opened.table.FieldByName("cubenr")->SetAsInteger(1);
    opened.table.FieldByName("name")->SetAsString(("p" + std::to_string(number)).c_str());
    std::string const state = sqlStateOf([&] { opened.table.Post(); });
    if (state != "none" && state != "23505") throw std::runtime_error("unexpected: " + state);
    if (!opened.table.Locate("cubenr", 1)) throw std::runtime_error("row not found");
});
ChildTask const nextNumbers("next numbers", [](int process, std::string const& url) {
    Opened opened(url);
    for (int i = 0; i < 20; ++i) addNext(opened.table, std::to_string(process) + "-" + std::to_string(i));
});

class Race : public cubes::test::TableTest {
protected:
    int run(ChildTask const& task) {
        // An open SQLite file must not be used in a forked process.
        table.SetConnection(nullptr);
        connection.reset();
        return task.inProcesses(processes, database->url());
    }
};
CUBES_BOTH_BACKENDS(Race);

TEST_P(Race, losesNoIncrementOfACounter) {
    fill(1);
    EXPECT_EQ(run(raises), processes);
    EXPECT_EQ(rows(), (Rows{{"1", "n1", "202"}}));
}

TEST_P(Race, acceptsOneOfTwoEqualRows) {
    EXPECT_EQ(run(equalRows), processes);
    EXPECT_EQ(rows().size(), 1u);
}

TEST_P(Race, givesDifferentNumbersUnderExclusiveAccess) {
    EXPECT_EQ(run(nextNumbers), processes);
    EXPECT_EQ(database->sql("SELECT count(*), count(DISTINCT \"name\"), max(\"cubenr\") FROM \"cube\""),
        (Rows{{"80", "80", "80"}}));
}

class Exclusive : public cubes::test::TableTest {};
CUBES_BOTH_BACKENDS(Exclusive);

TEST_P(Exclusive, accessRollsBackWhatIsNotCommitted) {
    {
        ExclusiveAccess access(table);
        add(1, "one");
    }
    EXPECT_EQ(rows(), Rows());
    addNext(table, "one");
    EXPECT_EQ(rows(), (Rows{{"1", "one", "NULL"}}));
}

TEST_P(Exclusive, accessDoesNotBlockReaders) {
    fill(1);
    Opened other(database->url());
    ExclusiveAccess access(table);
    add(2, "two");
    EXPECT_TRUE(other.table.Locate("cubenr", 1));
    EXPECT_FALSE(other.table.Locate("cubenr", 2));
    access.commit();
    EXPECT_TRUE(other.table.Locate("cubenr", 2));
}

TEST_P(Exclusive, accessCanBeNested) {
    ExclusiveAccess access(table);
    add(1, "one");
    {
        ExclusiveAccess inner(table);
        add(2, "two");
        inner.commit();
    }
    {
        ExclusiveAccess const abandoned(table);
        add(3, "three");
        EXPECT_EQ(sqlStateOf([&] { add(3, "again"); }), "23505");
    }
    add(4, "four");
    EXPECT_EQ(rows(), Rows());
    access.commit();
    EXPECT_EQ(rows(), (Rows{{"1", "one", "NULL"}, {"2", "two", "NULL"}, {"4", "four", "NULL"}}));
}

TEST_P(Exclusive, accessLeavesTheCallersTransactionOpen) {
    for (std::string const end : {"ROLLBACK", "COMMIT"}) {
        connection->Execute("BEGIN");
        add(1, "one");
        {
            ExclusiveAccess access(table);
            add(2, "two");
            access.commit();
        }
        {
            ExclusiveAccess const abandoned(table);
            add(3, "three");
        }
        EXPECT_EQ(rows(), Rows());
        connection->Execute(end);
        EXPECT_EQ(rows().size(), end == "COMMIT" ? 2u : 0u);
    }
}

TEST_P(Exclusive, accessLocksTheTableInsideTheCallersTransaction) {
    cubes::test::Variable const limit("CUBES_LOCK_TIMEOUT", "0.05");
    Opened other(database->url());
    connection->Execute("BEGIN");
    ExclusiveAccess access(table);
    EXPECT_EQ(sqlStateOf([&] { other.connection.Execute("INSERT INTO \"cube\" VALUES (9, 'x', 0)"); }), "55P03");
    access.commit();
    connection->Execute("COMMIT");
    other.connection.Execute("INSERT INTO \"cube\" VALUES (9, 'x', 0)");
}

TEST_P(Exclusive, accessEndsAfterAnErrorInside) {
    add(1, "one");
    {
        ExclusiveAccess access(table);
        EXPECT_EQ(sqlStateOf([&] { add(1, "again"); }), "23505");
    }
    add(2, "two");
    EXPECT_EQ(rows().size(), 2u);
}

}
