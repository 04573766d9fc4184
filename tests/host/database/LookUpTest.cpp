#include "host/database/TableTest.h"

#include "host/database/Session.h"
#include "host/database/Sql.h"
#include "host/database/Table.h"
#include "host/platform/NarrowText.h"

#include <algorithm>
#include <iterator>

namespace {

using cubes::platform::fromUtf8;
using cubes::test::Backend;
using cubes::test::sqlStateOf;
using Rktable::LocateOptions;
using Rktable::Value;

class LookUp : public cubes::test::TableTest {
protected:
    long foundIgnoringCase(std::string const& name) {
        return table.Locate("name", name.c_str(), LocateOptions::ignoringCase())
                   ? table.FieldByName("cubenr")->AsInteger()
                   : 0;
    }
};
CUBES_BOTH_BACKENDS(LookUp);

TEST_P(LookUp, findsARowByItsKey) {
    fill(10);
    EXPECT_TRUE(table.Locate("cubenr", 7));
    EXPECT_EQ(table.FieldByName("name")->AsString(), "n7");
    EXPECT_FALSE(table.Locate("cubenr", 11));
    table.First();
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 1);
}

TEST_P(LookUp, continuesAfterTheFoundRow) {
    fill(10);
    ASSERT_TRUE(table.Locate("cubenr", 8));
    EXPECT_EQ(walk(), (std::vector<long>{8, 9, 10}));
}

TEST_P(LookUp, comparesSeveralColumns) {
    fill(10);
    EXPECT_TRUE(table.Locate("cubenr;name;usageCounter", {4, "n4", 8}));
    EXPECT_FALSE(table.Locate("cubenr;name;usageCounter", {4, "n4", 9}));
}

TEST_P(LookUp, findsTheFirstRowInTheOrderOfThePrimaryKey) {
    database->execute("INSERT INTO \"cube\" VALUES (9, 'x', 1), (-3, 'X', 1), (4, 'x', 1)");
    EXPECT_TRUE(table.Locate("usageCounter", 1));
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), -3);
    EXPECT_TRUE(table.Locate("name", "x"));
    EXPECT_EQ(table.FieldByName("cubenr")->AsInteger(), 4);
    EXPECT_EQ(foundIgnoringCase("x"), -3);
}

TEST_P(LookUp, findsNothingForNull) {
    database->execute("INSERT INTO \"cube\" VALUES (1, NULL, NULL)");
    EXPECT_FALSE(table.Locate("name", Value()));
    EXPECT_FALSE(table.Locate("usageCounter", 0));
    EXPECT_FALSE(table.Locate("name", ""));
    EXPECT_FALSE(table.Locate("cubenr;name", {1, Value()}));
}

TEST_P(LookUp, findsNoNumberOutsideTheColumnsRange) {
    fill(1);
    for (long long const number : {32768LL, -32769LL, 65537LL, 4294967297LL, 9223372036854775807LL})
        EXPECT_FALSE(table.Locate("cubenr", number)) << number;
}

TEST_P(LookUp, comparesAcrossNumbersAndTexts) {
    database->execute("INSERT INTO \"cube\" VALUES (5, '17', 0)");
    EXPECT_TRUE(table.Locate("cubenr", "5"));
    EXPECT_TRUE(table.Locate("name", 17));
    EXPECT_FALSE(table.Locate("cubenr", "5x"));
    EXPECT_FALSE(table.Locate("cubenr", ""));
}

struct Names {
    char const* stored;
    char const* asked;
};

// Whether the platform's narrow encoding has all these letters.
bool isNarrow(std::string const& utf8) {
    return cubes::platform::toUtf8(std::string_view(fromUtf8(utf8))) == utf8;
}

TEST_P(LookUp, ignoresLetterCaseInAllLanguages) {
    Names const all[] = {{"Base", "bASE"}, {"ÜBERSEE", "übersee"}, {"ärger", "ÄRGER"}, {"Łódź", "łÓDŹ"},
        {"МОСКВА", "москва"}, {"Αθήνα", "ΑΘΉΝΑ"}, {"a-1_b", "A-1_B"}};
    std::vector<Names> equal;
    std::ranges::copy_if(all, std::back_inserter(equal), [](Names const& names) { return isNarrow(names.stored); });
    long number = 0;
    for (auto const& names : equal) add(++number, fromUtf8(names.stored));
    number = 0;
    for (auto const& names : equal) {
        EXPECT_EQ(foundIgnoringCase(fromUtf8(names.asked)), ++number) << names.stored;
        EXPECT_FALSE(table.Locate("name", fromUtf8(names.asked))) << names.stored;
    }
}

TEST_P(LookUp, distinguishesDifferentNames) {
    for (char const* const name : {"Base", "ÜBERSEE", "100%", "a_b"})
        add(static_cast<long>(rows().size()) + 1, fromUtf8(name));
    for (char const* const other : {"Bas", "Base ", "UBERSEE", "ubersee", "10%", "axb", "a%", ""})
        EXPECT_EQ(foundIgnoringCase(other), 0) << other;
}

TEST_P(LookUp, findsATextByItsBytesWithoutTheOption) {
    add(1, "Base");
    EXPECT_TRUE(table.Locate("name", "Base"));
    EXPECT_FALSE(table.Locate("name", "base"));
}

TEST_P(LookUp, requiresAsManyValuesAsKeys) {
    EXPECT_THROW(table.Locate("cubenr;name", 1), TRkDatabaseException);
    EXPECT_THROW(table.Locate("cubenr", std::vector<Value>{}), TRkDatabaseException);
    EXPECT_EQ(sqlStateOf([&] { table.Locate("nothing", 1); }), "42703");
    EXPECT_EQ(sqlStateOf([&] { table.Locate("", 1); }), "42703");
    EXPECT_EQ(sqlStateOf([&] { table.Locate("cubenr;", {1, 2}); }), "42703");
}

TEST_P(LookUp, findsRowsThatOthersHaveWrittenSince) {
    EXPECT_FALSE(table.Locate("cubenr", 1));
    fill(1);
    EXPECT_TRUE(table.Locate("cubenr", 1));
    database->execute("UPDATE \"cube\" SET \"name\" = 'other'");
    EXPECT_TRUE(table.Locate("cubenr", 1));
    EXPECT_EQ(table.FieldByName("name")->AsString(), "other");
}

// The database's own lower() knows ASCII only.
TEST(PostgresDatabase, postgresFoldsAllLettersInADatabaseWithLocaleC) {
    cubes::test::requireBackend(Backend::postgres);
    if (testing::Test::IsSkipped() || testing::Test::HasFatalFailure()) return;
    cubes::test::TestDatabase const plain(Backend::postgres, "TEMPLATE template0 LOCALE 'C'");
    EXPECT_EQ(plain.sql("SELECT lower('Ü')"), (cubes::test::Rows{{"Ü"}}));
    Pgaccess::TPgConnection connection(plain.url());
    connection.Execute("CREATE TABLE \"cube\" (\"cubenr\" smallint PRIMARY KEY, \"name\" varchar(8))");
    connection.Execute(fromUtf8("INSERT INTO \"cube\" VALUES (1, 'Übersee')"));
    Rktable::TRkTableProxy table("cube", "", "cube");
    table.SetConnection(&connection);
    table.Open();
    EXPECT_TRUE(table.Locate("name", fromUtf8("üBERSEE"), LocateOptions::ignoringCase()));
}

}
