#include "host/database/TableTest.h"

#include <numeric>

namespace {

using cubes::test::Backend;
using cubes::test::Rows;
using cubes::test::sqlStateOf;
using Rktable::TRkTableProxy;

std::vector<long> numbersUpTo(long last) {
    std::vector<long> numbers(static_cast<std::size_t>(last));
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

class Cursor : public cubes::test::TableTest {};
CUBES_BOTH_BACKENDS(Cursor);

TEST_P(Cursor, isAtTheEndOfAnEmptyTable) {
    EXPECT_TRUE(table.GetEof());
    table.Next();
    table.First();
    EXPECT_TRUE(table.GetEof());
}

TEST_P(Cursor, opensOnTheFirstRow) {
    database->execute("INSERT INTO \"cube\" VALUES (3, 'Base', 0)");
    table.Close();
    table.Open();
    EXPECT_FALSE(table.GetEof());
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 3);
    table.Next();
    EXPECT_TRUE(table.GetEof());
    table.First();
    EXPECT_EQ(table.FieldByName("name")->AsString(), "Base");
}

TEST_P(Cursor, returnsItsNames) {
    EXPECT_EQ(table.GetTableName(), "cube");
    EXPECT_EQ(table.GetAliasPropertyWrapper().AsString(), "register");
}

// Longer than the batches in which rows are fetched, and added in no order.
TEST_P(Cursor, walksInTheOrderOfThePrimaryKey) {
    fill(5000);
    database->execute("DELETE FROM \"cube\" WHERE \"cubenr\" = 1");
    add(1, "last");
    table.First();
    EXPECT_EQ(walk(), numbersUpTo(5000));
}

class CompoundKey : public cubes::test::TableTest {
protected:
    // Every combination of 1 to 9 in a, 1 to 20 in b and 1 to 30 in c.
    void makeTable() {
        std::string const numbers =
            backend() == Backend::sqlite
                ? "WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM s WHERE i < 30) "
                : "WITH s AS (SELECT i FROM generate_series(1, 30) AS i) ";
        connection->Execute("CREATE TABLE \"t\" (\"c\" smallint, \"a\" smallint, \"b\" smallint, "
                            "PRIMARY KEY (\"a\", \"b\", \"c\"))");
        connection->Execute("INSERT INTO \"t\" " + numbers +
                            "SELECT z.i, x.i, y.i FROM s x, s y, s z WHERE x.i <= 9 AND y.i <= 20 ORDER BY z.i, y.i");
        compound.SetConnection(&*connection);
        compound.Open();
    }
    std::vector<long> walkCompound() {
        std::vector<long> keys;
        for (; !compound.GetEof(); compound.Next())
            keys.push_back(compound.FieldByName("a")->AsInteger() * 10000 +
                           compound.FieldByName("b")->AsInteger() * 100 + compound.FieldByName("c")->AsInteger());
        return keys;
    }
    TRkTableProxy compound{"t", "", "t"};
};
CUBES_BOTH_BACKENDS(CompoundKey);

TEST_P(CompoundKey, isWalkedInItsOwnOrder) {
    makeTable();
    std::vector<long> expected;
    for (long a = 1; a <= 9; ++a)
        for (long b = 1; b <= 20; ++b)
            for (long c = 1; c <= 30; ++c) expected.push_back(a * 10000 + b * 100 + c);
    EXPECT_EQ(walkCompound(), expected);
}

TEST_P(CompoundKey, isWalkedUnderAFilter) {
    makeTable();
    compound.SetFilterSQL("\"a\"=4");
    auto const keys = walkCompound();
    ASSERT_EQ(keys.size(), 600u);
    EXPECT_EQ(keys.front(), 40101);
    EXPECT_EQ(keys.back(), 42030);
}

TEST_P(Cursor, showsOnlyRowsThatMatchTheFilter) {
    fill(100);
    table.SetFilterSQL("\"cubenr\" > 97");
    EXPECT_EQ(walk(), (std::vector<long>{98, 99, 100}));
    EXPECT_FALSE(table.Locate("cubenr", 5));
    EXPECT_TRUE(table.Locate("cubenr", 99));
    EXPECT_EQ(table.Greatest("cubenr"), 100);
    table.SetFilterSQL("\"cubenr\" < 4");
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 1);
    EXPECT_EQ(table.Greatest("cubenr"), 3);
    table.SetFilterSQL("");
    EXPECT_EQ(walk().size(), 100u);
}

TEST_P(Cursor, refusesAnInvalidFilter) {
    table.SetFilterSQL("\"cubenr\" >");
    EXPECT_THROW(table.GetEof(), TRkDatabaseException);
}

TEST_P(Cursor, isOnTheNewRowAfterPosting) {
    add(7, "New");
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 7);
    EXPECT_EQ(table.FieldByName("name")->AsString(), "New");
    EXPECT_TRUE(table.FieldByName("usageCounter")->IsNull());
    EXPECT_EQ(rows(), (Rows{{"7", "New", "NULL"}}));
}

TEST_P(Cursor, continuesAfterANewRow) {
    fill(3);
    database->execute("DELETE FROM \"cube\" WHERE \"cubenr\" = 2");
    add(2, "two");
    table.Next();
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 3);
}

TEST_P(Cursor, writesOnlyTheColumnsThatWereSet) {
    database->execute("INSERT INTO \"cube\" VALUES (1, 'one', 5)");
    ASSERT_TRUE(table.Locate("cubenr", 1));
    table.Edit();
    table.FieldByName("name")->SetAsString("uno");
    database->execute("UPDATE \"cube\" SET \"usageCounter\" = 6");
    table.Post();
    EXPECT_EQ(rows(), (Rows{{"1", "uno", "6"}}));
    EXPECT_EQ(table.FieldByName("usageCounter")->AsInteger(), 6);
}

TEST_P(Cursor, changesAKeyAndStaysOnTheRow) {
    fill(3);
    ASSERT_TRUE(table.Locate("cubenr", 2));
    table.Edit();
    table.FieldByName("cubenr")->SetAsInteger(20);
    table.Post();
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 20);
    EXPECT_EQ(rows(), (Rows{{"1", "n1", "2"}, {"3", "n3", "6"}, {"20", "n2", "4"}}));
}

TEST_P(Cursor, survivesChangesDuringAWalk) {
    fill(3000);
    long seen = 0;
    for (table.First(); !table.GetEof(); ++seen) {
        long const number = table.FieldByName("cubenr")->AsInteger();
        if (number % 500 == 0) {
            table.Delete();
            continue;
        }
        if (number % 499 == 0) {
            table.Edit();
            table.FieldByName("name")->SetAsString("walked");
            table.Post();
        }
        table.Next();
    }
    EXPECT_EQ(seen, 3000);
    EXPECT_EQ(database->sql("SELECT count(*) FROM \"cube\""), (Rows{{"2994"}}));
    EXPECT_EQ(database->sql("SELECT count(*) FROM \"cube\" WHERE \"name\" = 'walked'"), (Rows{{"6"}}));
}

TEST_P(Cursor, isOnTheNextRowAfterADeletion) {
    fill(3);
    ASSERT_TRUE(table.Locate("cubenr", 2));
    table.Delete();
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 3);
    table.Delete();
    EXPECT_TRUE(table.GetEof());
    EXPECT_EQ(rows(), (Rows{{"1", "n1", "2"}}));
}

TEST_P(Cursor, deletesARowThatIsAlreadyGone) {
    fill(2);
    ASSERT_TRUE(table.Locate("cubenr", 1));
    database->execute("DELETE FROM \"cube\" WHERE \"cubenr\" = 1");
    table.Delete();
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 2);
}

TEST_P(Cursor, reportsARowThatATriggerPreserves) {
    fill(1);
    connection->Execute(backend() == Backend::sqlite
                            ? "CREATE TRIGGER keep BEFORE DELETE ON \"cube\" BEGIN SELECT raise(IGNORE); END"
                            : "CREATE FUNCTION keep() RETURNS trigger LANGUAGE plpgsql AS 'BEGIN RETURN NULL; END'; "
                              "CREATE TRIGGER keep BEFORE DELETE ON \"cube\" FOR EACH ROW EXECUTE FUNCTION keep()");
    table.Open();
    ASSERT_TRUE(table.Locate("cubenr", 1));
    std::string const message = cubes::test::messageOf([&] { table.Delete(); });
    EXPECT_NE(message.find("cannot delete the row cubenr=1 of table \"cube\""), std::string::npos) << message;
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 1);
}

// Only SQLite allows null in a primary key.
TEST(SqliteCursor, reportsARowThatCannotBeDeletedBecauseItsKeyHoldsNull) {
    cubes::test::TestDatabase const database(Backend::sqlite);
    Pgaccess::TPgConnection connection(database.url());
    connection.Execute("CREATE TABLE \"t\" (\"a\" smallint, \"b\" smallint, PRIMARY KEY (\"a\", \"b\"))");
    connection.Execute("INSERT INTO \"t\" VALUES (1, NULL)");
    TRkTableProxy table("t", "", "t");
    table.SetConnection(&connection);
    table.Open();
    std::string const message = cubes::test::messageOf([&] { table.Delete(); });
    EXPECT_NE(message.find("the row a=1, b=NULL of table \"t\": its key holds NULL"), std::string::npos) << message;
}

TEST_P(Cursor, reportsARowThatWasDeletedWhileItWasEdited) {
    fill(1);
    ASSERT_TRUE(table.Locate("cubenr", 1));
    table.Edit();
    table.FieldByName("name")->SetAsString("x");
    database->execute("DELETE FROM \"cube\"");
    EXPECT_EQ(sqlStateOf([&] { table.Post(); }), "02000");
}

TEST_P(Cursor, refusesAKeyThatExists) {
    add(1, "one");
    EXPECT_EQ(sqlStateOf([&] { add(1, "again"); }), "23505");
    EXPECT_EQ(rows(), (Rows{{"1", "one", "NULL"}}));
    add(2, "two");
    EXPECT_EQ(rows().size(), 2u);
}

TEST_P(Cursor, passesOnTheErrorOfATrigger) {
    connection->Execute(backend() == Backend::sqlite
                            ? "CREATE TRIGGER no BEFORE INSERT ON \"cube\" BEGIN SELECT raise(ABORT, 'closed'); END"
                            : "CREATE FUNCTION no() RETURNS trigger LANGUAGE plpgsql AS "
                              "'BEGIN RAISE ''closed''; END'; "
                              "CREATE TRIGGER no BEFORE INSERT ON \"cube\" FOR EACH ROW EXECUTE FUNCTION no()");
    table.Open();
    EXPECT_EQ(sqlStateOf([&] { add(1, "one"); }), "P0001");
}

TEST_P(Cursor, dropsAChangeThatIsNotPosted) {
    fill(2);
    table.First();
    table.Edit();
    table.FieldByName("name")->SetAsString("x");
    table.Next();
    EXPECT_EQ(table.FieldByName("name")->AsString(), "n2");
    table.Append();
    table.Close();
    EXPECT_EQ(rows(), (Rows{{"1", "n1", "2"}, {"2", "n2", "4"}}));
}

TEST_P(Cursor, refusesOperationsThatItsStateForbids) {
    EXPECT_EQ(sqlStateOf([&] { table.Post(); }), "24000");
    EXPECT_EQ(sqlStateOf([&] { table.Edit(); }), "24000");
    EXPECT_EQ(sqlStateOf([&] { table.Delete(); }), "24000");
    EXPECT_EQ(sqlStateOf([&] { table.FieldByName("name")->AsString(); }), "24000");
    EXPECT_EQ(sqlStateOf([&] { table.FieldByName("name")->SetAsString("x"); }), "24000");
    table.Close();
    table.Close();
    EXPECT_EQ(sqlStateOf([&] { table.GetEof(); }), "24000");
    EXPECT_EQ(sqlStateOf([&] { table.FieldByName("name"); }), "24000");
}

TEST_P(Cursor, doesNotOpenWithoutConnectionOrTable) {
    TRkTableProxy unconnected("cube", "", "cube");
    EXPECT_EQ(sqlStateOf([&] { unconnected.Open(); }), "08003");
    TRkTableProxy missing("nothing", "", "nothing");
    missing.SetConnection(&*connection);
    EXPECT_EQ(sqlStateOf([&] { missing.Open(); }), "42P01");
}

TEST_P(Cursor, forgetsATableThatWasDropped) {
    ASSERT_FALSE(table.Locate("cubenr", 1));
    database->execute("DROP TABLE \"cube\"");
    EXPECT_THROW(table.Locate("cubenr", 1), TRkDatabaseException);
    EXPECT_EQ(sqlStateOf([&] { table.Open(); }), "42P01");
}

TEST_P(Cursor, readsAndChangesATableWithoutAPrimaryKey) {
    connection->Execute("CREATE TABLE \"loose\" (\"n\" integer, \"t\" varchar(20))");
    connection->Execute("INSERT INTO \"loose\" VALUES (1, 'a'), (2, 'b'), (2, 'b'), (3, 'c')");
    TRkTableProxy loose("loose", "", "loose");
    loose.SetConnection(&*connection);
    loose.Open();
    std::string seen;
    for (; !loose.GetEof(); loose.Next()) seen += loose.FieldByName("t")->AsString().str();
    EXPECT_EQ(seen, "abbc");
    ASSERT_TRUE(loose.Locate("n", 2));
    loose.Edit();
    loose.FieldByName("t")->SetAsString("x");
    loose.Post();
    EXPECT_TRUE(loose.Raise("n"));
    loose.Delete();
    ASSERT_TRUE(loose.Locate("n", 3));
    EXPECT_TRUE(loose.Raise("n"));
    EXPECT_EQ(database->sql("SELECT * FROM \"loose\" ORDER BY 1"), (Rows{{"1", "a"}, {"2", "b"}, {"4", "c"}}));
}

TEST_P(Cursor, quotesEveryName) {
    connection->Execute("CREATE TABLE \"a\"\"b;c\" (\"user\" smallint PRIMARY KEY, \"x\"\"y\" varchar(5), "
                        "\"select\" integer)");
    TRkTableProxy odd("a\"b;c", "", "odd");
    odd.SetConnection(&*connection);
    odd.Open();
    odd.Append();
    odd.FieldByName("user")->SetAsInteger(1);
    odd.FieldByName("x\"y")->SetAsString("'; --");
    odd.FieldByName("select")->SetAsInteger(2);
    odd.Post();
    EXPECT_TRUE(odd.Locate("x\"y;select", {"'; --", 2}));
    EXPECT_EQ(odd.FieldByName("user")->AsInteger(), 1);
}

}
