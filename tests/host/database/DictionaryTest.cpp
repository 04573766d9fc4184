#include "host/database/TableTest.h"

#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>

namespace {

using cubes::test::Rows;
using Tables = std::vector<CountedPtr<Rktable::TRkTableProxy>>;

class Dictionary : public cubes::test::TableTest {
protected:
    void SetUp() override {
        TableTest::SetUp();
        if (connection) getConnectionManagerInstance().SetCurrentConnection(&*connection);
    }
    void TearDown() override { getConnectionManagerInstance().SetCurrentConnection(nullptr); }

    void makeTable(std::string const& schema, std::string const& name) {
        if (backend() == cubes::test::Backend::postgres)
            database->execute("CREATE SCHEMA IF NOT EXISTS \"" + schema + "\"");
        database->execute("CREATE TABLE " + database->table(schema, name) + " (\"cubenr\" smallint PRIMARY KEY)");
    }
    std::string aliases(char const* object, char const* schema) {
        Tables tables;
        bool const found = dictionary.BuildDataTables(object, tables, AnsiString(schema));
        EXPECT_EQ(found, !tables.empty());
        std::string text;
        for (auto const& one : tables) text += one->GetAliasPropertyWrapper().AsString().str() + " ";
        return text;
    }

    TRkDBDataDictionary dictionary;
};
CUBES_BOTH_BACKENDS(Dictionary);

TEST_P(Dictionary, buildsACursorThatIsNeitherOpenNorConnected) {
    auto const built = dictionary.BuildTable("cube", AnsiString());
    ASSERT_TRUE(built);
    EXPECT_EQ(built->GetTableName(), "cube");
    EXPECT_EQ(cubes::test::sqlStateOf([&] { built->Open(); }), "08003");
    built->SetConnection(&*connection);
    built->Open();
    EXPECT_TRUE(built->GetEof());
}

TEST_P(Dictionary, returnsNothingForAMissingTable) {
    EXPECT_FALSE(dictionary.BuildTable(nullptr, AnsiString()));
    EXPECT_FALSE(dictionary.BuildTable("nothing", AnsiString()));
    EXPECT_FALSE(dictionary.BuildTable("", AnsiString()));
    EXPECT_FALSE(dictionary.BuildTable("cube", AnsiString("nowhere")));
    EXPECT_EQ(aliases("cube", "nowhere"), "");
    EXPECT_EQ(aliases("nothing", "public"), "");
    EXPECT_EQ(aliases(nullptr, "public"), "");
}

TEST_P(Dictionary, returnsNothingWithoutAConnection) {
    getConnectionManagerInstance().SetCurrentConnection(nullptr);
    EXPECT_FALSE(dictionary.BuildTable("cube", AnsiString()));
    EXPECT_EQ(aliases("cube", "public"), "");
}

TEST_P(Dictionary, findsATableAsSoonAsAnotherConnectionHasCreatedIt) {
    EXPECT_EQ(aliases("cube", "delta"), "");
    EXPECT_FALSE(dictionary.BuildTable("cube5data1", AnsiString("delta")));
    makeTable("delta", "cube5data1");
    EXPECT_TRUE(dictionary.BuildTable("cube5data1", AnsiString("delta")));
    EXPECT_EQ(aliases("cube", "delta"), "cube5data1 ");
}

TEST_P(Dictionary, findsTheDataTablesOfOneSchema) {
    makeTable("public", "cube4data1");
    makeTable("delta", "cube5data1");
    makeTable("both", "cube4data1");
    makeTable("both", "cube5data1");
    EXPECT_EQ(aliases("cube", "public"), "cube4data1 ");
    EXPECT_EQ(aliases("cube", "delta"), "cube5data1 ");
    EXPECT_EQ(aliases("cube", "both"), "cube4data1 cube5data1 ");
}

TEST_P(Dictionary, readsTheTableOfTheRequestedSchema) {
    makeTable("one", "cube4data1");
    makeTable("two", "cube4data1");
    database->execute("INSERT INTO " + database->table("two", "cube4data1") + " VALUES (2)");
    Tables tables;
    ASSERT_TRUE(dictionary.BuildDataTables("cube", tables, AnsiString("two")));
    tables[0]->SetConnection(&*connection);
    tables[0]->Open();
    EXPECT_EQ(tables[0]->GetTableName(), "cube4data1");
    EXPECT_TRUE(tables[0]->Locate("cubenr", 2));
}

TEST_P(Dictionary, forgetsATableThatAnOperationDidNotFind) {
    makeTable("public", "cube4data1");
    Tables tables;
    ASSERT_TRUE(dictionary.BuildDataTables("cube", tables, AnsiString("public")));
    tables[0]->SetConnection(&*connection);
    tables[0]->Open();
    database->execute("DROP TABLE " + database->table("public", "cube4data1"));
    EXPECT_THROW(tables[0]->Locate("cubenr", 1), TRkDatabaseException);
    EXPECT_EQ(aliases("cube", "public"), "");
    EXPECT_FALSE(dictionary.BuildTable("cube4data1", AnsiString("public")));
}

}
