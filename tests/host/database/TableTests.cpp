#include "host/database/ExclusiveAccess.h"
#include "support/Backend.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/database/TRkTableProxy.h>

#include <gtest/gtest.h>

namespace {

using cubes::test::Rows;
using Rktable::LocateOptions;
using Rktable::TRkTableProxy;
using Rktable::Value;

// A connection to a database with the table "cube", of which one row is there: 3, "Base".
class Table : public cubes::test::BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        database.emplace(backend());
        connection.emplace(database->url());
        connection->Execute(
            "CREATE TABLE \"cube\" (\"cubenr\" smallint PRIMARY KEY, \"name\" varchar(8), \"uses\" integer)");
        connection->Execute("INSERT INTO \"cube\" VALUES (3, 'Base', NULL)");
        table.SetConnection(&*connection);
        table.Open();
    }

    Rows rows() const { return database->sql("SELECT * FROM \"cube\" ORDER BY \"cubenr\""); }
    void fill(int from, int to) {
        for (int i = from; i <= to; ++i) {
            table.Append();
            table.FieldByName("cubenr")->SetAsInteger(i);
            table.FieldByName("name")->SetAsString(("n" + std::to_string(i)).c_str());
            table.Post();
        }
    }
    std::vector<long> walk() {
        std::vector<long> numbers;
        for (; !table.GetEof(); table.Next()) numbers.push_back(table.FieldByName("cubenr")->AsInteger());
        return numbers;
    }

    std::optional<cubes::test::TestDatabase> database;
    std::optional<Pgaccess::TPgConnection> connection;
    TRkTableProxy table{"cube", "", "register"};
};
CUBES_BOTH_BACKENDS(Table);

TEST_P(Table, opensOnItsFirstRow) {
    EXPECT_FALSE(table.GetEof());
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 3);
    EXPECT_EQ(table.FieldByName("name")->AsString(), "Base");
    table.Next();
    EXPECT_TRUE(table.GetEof());
}

TEST_P(Table, writesANewRow) {
    table.Append();
    table.FieldByName("cubenr")->SetAsInteger(7);
    table.FieldByName("name")->SetAsString("New");
    table.Post();
    EXPECT_EQ(table.FieldByName("name")->AsString(), "New");
    EXPECT_EQ(rows(), (Rows{{"3", "Base", "NULL"}, {"7", "New", "NULL"}}));
}

}
