#include "host/database/TableTest.h"

#include "host/platform/NarrowText.h"

namespace {

using cubes::platform::fromUtf8;
using cubes::test::Rows;
using cubes::test::sqlStateOf;

class Field : public cubes::test::TableTest {};
CUBES_BOTH_BACKENDS(Field);

TEST_P(Field, isFoundByNarrowAndWideNames) {
    EXPECT_EQ(table.FieldByName("name")->Name(), "name");
    EXPECT_EQ(table.FieldByName(L"name"), table.FieldByName("name"));
    EXPECT_EQ(table.FindField(std::wstring(L"cubenr")), table.FindField(std::string("cubenr")));
}

TEST_P(Field, isNullOrAnErrorForAnUnknownName) {
    for (char const* const name : {"", "nam", "names", "rowid", "ctid", "name;cubenr"}) {
        EXPECT_EQ(table.FindField(name), nullptr) << name;
        EXPECT_EQ(sqlStateOf([&] { table.FieldByName(name); }), "42703") << name;
    }
}

TEST_P(Field, isFoundByASingleMatchIgnoringLetterCase) {
    EXPECT_EQ(table.FieldByName("USAGEcounter")->Name(), "usageCounter");
}

TEST_P(Field, returnsItsDeclaredSize) {
    EXPECT_EQ(table.FieldByName("name")->Size(), 8);
    EXPECT_EQ(table.FieldByName("cubenr")->Size(), 0);
}

TEST_P(Field, readsNumbersAndTextsAsBoth) {
    database->execute("INSERT INTO \"cube\" VALUES (-4, '12 x', NULL)");
    ASSERT_TRUE(table.Locate("cubenr", -4));
    EXPECT_EQ(table.FieldByName("cubenr")->AsString(), "-4");
    EXPECT_EQ(table.FieldByName("name")->AsInteger(), 12);
    EXPECT_TRUE(table.FieldByName("usageCounter")->IsNull());
    EXPECT_EQ(table.FieldByName("usageCounter")->AsInteger(), 0);
    EXPECT_EQ(table.FieldByName("usageCounter")->AsString(), "");
}

TEST_P(Field, cutsATextToItsSizeInCharacters) {
    add(1, "123456789");
    add(2, fromUtf8("äöüÄÖÜß€x"));
    add(3, "12345678");
    EXPECT_EQ(rows(), (Rows{{"1", "12345678", "NULL"}, {"2", "äöüÄÖÜß€", "NULL"}, {"3", "12345678", "NULL"}}));
}

TEST_P(Field, showsNewValuesBeforeTheyArePosted) {
    add(1, "one");
    table.Edit();
    table.FieldByName("name")->SetAsString("123456789");
    EXPECT_EQ(table.FieldByName("name")->AsString(), "12345678");
    table.FieldByName("usageCounter")->SetAsInteger(5);
    EXPECT_EQ(table.FieldByName("usageCounter")->AsInteger(), 5);
    EXPECT_EQ(rows(), (Rows{{"1", "one", "NULL"}}));
}

TEST_P(Field, canBeSetToNull) {
    database->execute("INSERT INTO \"cube\" VALUES (1, 'one', 5), (2, 'two', 5)");
    ASSERT_TRUE(table.Locate("cubenr", 1));
    table.Edit();
    table.FieldByName("name")->Clear();
    table.FieldByName("usageCounter")->SetAsString(nullptr);
    table.Post();
    EXPECT_EQ(rows(), (Rows{{"1", "NULL", "NULL"}, {"2", "two", "5"}}));
}

TEST_P(Field, acceptsNumbersAsTextsAndTextsAsNumbers) {
    table.Append();
    table.FieldByName("cubenr")->SetAsString("17");
    table.FieldByName("name")->SetAsInteger(-3);
    table.Post();
    EXPECT_EQ(rows(), (Rows{{"17", "-3", "NULL"}}));
}

TEST_P(Field, refusesValuesThatTheColumnCannotStore) {
    table.Append();
    EXPECT_EQ(sqlStateOf([&] { table.FieldByName("cubenr")->SetAsInteger(32768); }), "22003");
    EXPECT_EQ(sqlStateOf([&] { table.FieldByName("cubenr")->SetAsInteger(-32769); }), "22003");
    EXPECT_EQ(sqlStateOf([&] { table.FieldByName("cubenr")->SetAsString("1x"); }), "22P02");
    table.FieldByName("cubenr")->SetAsInteger(-32768);
    table.Post();
    EXPECT_EQ(rows(), (Rows{{"-32768", "NULL", "NULL"}}));
}

TEST_P(Field, returnsATextAsItWouldStoreIt) {
    EXPECT_EQ(table.FieldByName("name")->Stored("123456789"), "12345678");
    EXPECT_EQ(table.FieldByName("name")->Stored(nullptr), "");
    EXPECT_EQ(table.FieldByName("cubenr")->Stored("123456789"), "123456789");
}

// In such a database the server counts bytes; no character is cut in two.
TEST(PostgresField, postgresCutsByBytesInADatabaseWithoutAnEncoding) {
    cubes::test::requireBackend(cubes::test::Backend::postgres);
    if (testing::Test::IsSkipped() || testing::Test::HasFatalFailure()) return;
    cubes::test::TestDatabase const database(
        cubes::test::Backend::postgres, "TEMPLATE template0 ENCODING 'SQL_ASCII' LOCALE 'C'");
    Pgaccess::TPgConnection connection(database.url());
    connection.Execute("CREATE TABLE \"cube\" (\"cubenr\" smallint PRIMARY KEY, \"name\" varchar(8))");
    Rktable::TRkTableProxy table("cube", "", "cube");
    table.SetConnection(&connection);
    table.Open();
    EXPECT_EQ(table.FieldByName("name")->Stored("1äöüx"), "1äöüx");
    // In narrow encodings other than UTF-8, each of these bytes is a character.
    std::string const cut = std::string("1äöü€").substr(0, cubes::platform::narrowEncoding() == "UTF8" ? 7 : 8);
    EXPECT_EQ(table.FieldByName("name")->Stored("1äöü€"), cut.c_str());
    table.Append();
    table.FieldByName("cubenr")->SetAsInteger(1);
    table.FieldByName("name")->SetAsString("1äöü€");
    table.Post();
    EXPECT_EQ(database.sql("SELECT \"name\" FROM \"cube\""), (Rows{{cut}}));
}

}
