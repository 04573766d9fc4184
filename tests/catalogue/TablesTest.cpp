#include "catalogue/Tables.h"
#include "host/database/Session.h"
#include "host/database/Sql.h"
#include "host/database/TableTest.h"
#include "support/ChildTask.h"

namespace {

using cubes::catalogue::createMissingTables;
using cubes::test::Backend;
using cubes::test::Rows;

void makeOn(std::string const& url) {
    Pgaccess::TPgConnection connection(url);
    createMissingTables(connection.Backend(), "delta");
}

cubes::test::ChildTask const making("making", [](int, std::string const& url) { makeOn(url); });

class Definition : public cubes::test::BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (!IsSkipped() && !HasFatalFailure()) database.emplace(backend());
    }
    void make() const { makeOn(database->url()); }
    // Name, type, whether null is refused, and the position in the primary key.
    Rows columns(std::string const& schema, std::string const& name) const {
        if (backend() == Backend::sqlite)
            return database->sql("SELECT name, lower(type), \"notnull\", pk FROM pragma_table_info('" +
                                 (schema.empty() ? name : schema + "." + name) + "')");
        return database->sql(
            "SELECT attname, replace(format_type(atttypid, atttypmod), 'character varying', 'varchar'),"
            " attnotnull::int, coalesce(array_position(indkey::int2[], attnum) + 1, 0) FROM pg_attribute"
            " JOIN pg_index ON indrelid = attrelid AND indisprimary WHERE attnum > 0 AND attrelid = '" +
            database->table(schema, name) + "'::regclass ORDER BY attnum");
    }
    std::optional<cubes::test::TestDatabase> database;
};
CUBES_BOTH_BACKENDS(Definition);

TEST_P(Definition, createsTheDocumentedTables) {
    make();
    EXPECT_EQ(columns("", "cube"), (Rows{{"cubenr", "smallint", "1", "1"}, {"name", "varchar(128)", "0", "0"}}));
    EXPECT_EQ(columns("public", "cube4data1"),
        (Rows{{"cubenr", "smallint", "1", "1"}, {"purpose", "smallint", "1", "2"}, {"mode", "smallint", "1", "3"},
            {"time", "smallint", "1", "4"}, {"user", "smallint", "1", "5"}, {"usageCounter", "integer", "0", "0"},
            {"filename", "varchar(255)", "0", "0"}}));
    EXPECT_EQ(columns("delta", "cube5data1"),
        (Rows{{"cubenr", "smallint", "1", "1"}, {"purpose", "smallint", "1", "2"}, {"mode", "smallint", "1", "3"},
            {"time", "smallint", "1", "4"}, {"user", "smallint", "1", "5"}, {"result", "smallint", "1", "6"},
            {"iteration", "smallint", "1", "7"}, {"parentcubenr", "smallint", "0", "0"},
            {"parentpurpose", "smallint", "0", "0"}, {"parentmode", "smallint", "0", "0"},
            {"parenttime", "smallint", "0", "0"}, {"parentuser", "smallint", "0", "0"},
            {"parentresult", "smallint", "0", "0"}, {"parentiteration", "smallint", "0", "0"},
            {"usageCounter", "integer", "0", "0"}, {"filename", "varchar(255)", "0", "0"}}));
}

TEST_P(Definition, neverChangesExistingTables) {
    database->execute("CREATE TABLE " + database->table("", "cube") + " (\"cubenr\" integer, \"name\" text)");
    database->execute("INSERT INTO \"cube\" VALUES (1, 'old')");
    make();
    make();
    EXPECT_EQ(database->sql("SELECT * FROM \"cube\""), (Rows{{"1", "old"}}));
    EXPECT_EQ(columns("public", "cube4data1").size(), 7u);
}

TEST_P(Definition, canBeRunBySeveralProcessesAtOnce) {
    EXPECT_EQ(making.inProcesses(4, database->url()), 4);
    EXPECT_EQ(columns("delta", "cube5data1").size(), 16u);
}

TEST_P(Definition, canBeWrittenToByOtherPrograms) {
    make();
    database->execute("INSERT INTO \"cube\" VALUES (1, 'Übersee')");
    EXPECT_EQ(database->sql("SELECT \"name\" FROM \"cube\""), (Rows{{"Übersee"}}));
}

// The database's plan for the statement.
class Plan : public Definition {
protected:
    std::string of(std::string const& schema, std::string const& name, std::string const& keys,
        cubes::database::Match match) const {
        Pgaccess::TPgConnection connection(database->url());
        auto& session = connection.Backend();
        auto const known = session.systemTables().find(schema, name);
        cubes::database::Sql const sql(known->description(), session.dialect());
        auto const columns = known->columns(keys);
        std::string text;
        for (auto const& row : explained(sql.lookUp(columns, match, {}), columns.size())) text += row.back() + "\n";
        return text;
    }
    std::string ofBatch(std::string const& schema, std::string const& name, std::string const& filter) const {
        Pgaccess::TPgConnection connection(database->url());
        auto& session = connection.Backend();
        auto const known = session.systemTables().find(schema, name);
        cubes::database::Sql const sql(known->description(), session.dialect());
        std::string text;
        for (auto const& row : explained(sql.rowsOfSameGroup(filter, 2048), known->description().key.size()))
            text += row.back() + "\n";
        return text;
    }

private:
    Rows explained(std::string const& statement, std::size_t values) const {
        if (backend() == Backend::sqlite) return database->sql("EXPLAIN QUERY PLAN " + statement);
        std::string arguments;
        for (std::size_t i = 0; i < values; ++i) arguments += (i ? ", " : "") + std::string("'1'");
        return database->sql("SET plan_cache_mode = force_generic_plan; PREPARE p AS " + statement +
                             "; EXPLAIN EXECUTE p(" + arguments + ")");
    }
};
CUBES_BOTH_BACKENDS(Plan);

struct Asked {
    char const* schema;
    char const* table;
    char const* keys;
    cubes::database::Match match;
};

TEST_P(Plan, usesAnIndexForEveryLookUpOfACube) {
    make();
    std::string const numbers = backend() == Backend::sqlite
                                    ? "WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM s WHERE i < 20000) "
                                    : "WITH s AS (SELECT i FROM generate_series(1, 20000) AS i) ";
    database->execute(numbers + "INSERT INTO \"cube\" SELECT i, 'n' || i FROM s");
    database->execute(
        numbers + "INSERT INTO " + database->table("public", "cube4data1") + " SELECT 1, i, 1, 1, 1, 0, 'f' FROM s");
    database->execute(numbers + "INSERT INTO " + database->table("delta", "cube5data1") +
                      " (\"cubenr\", \"purpose\", \"mode\", \"time\", \"user\", \"result\", \"iteration\")"
                      " SELECT 1, i, 1, 1, 1, 1, 1 FROM s");
    database->execute("ANALYZE");
    using cubes::database::Match;
    Asked const asked[] = {
        {"", "cube", "cubenr", Match::exact},
        {"", "cube", "name", backend() == Backend::sqlite ? Match::ignoringAsciiCase : Match::ignoringCase},
        {"public", "cube4data1", "cubenr;purpose;mode;time;user", Match::exact},
        {"delta", "cube5data1", "cubenr;purpose;mode;time;user;result;iteration", Match::exact},
    };
    char const* const search = backend() == Backend::sqlite ? "SEARCH" : "Index Cond";
    for (auto const& one : asked) {
        std::string const plan = of(one.schema, one.table, one.keys, one.match);
        EXPECT_NE(plan.find(search), std::string::npos) << one.keys << "\n" << plan;
        EXPECT_EQ(plan.find("SCAN"), std::string::npos) << one.keys << "\n" << plan;
        EXPECT_EQ(plan.find("Sort"), std::string::npos) << one.keys << "\n" << plan;
        EXPECT_EQ(plan.find("B-TREE"), std::string::npos) << one.keys << "\n" << plan;
    }
    std::string const batch = ofBatch("public", "cube4data1", "\"cubenr\"=1");
    char const* const range = backend() == Backend::sqlite ? "(cubenr=? AND (purpose,mode,time,user)>" : "ROW(purpose";
    EXPECT_NE(batch.find(range), std::string::npos) << batch;
    EXPECT_EQ(batch.find("Sort"), std::string::npos) << batch;
}

}
