#pragma once

#include "support/Backend.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/database/TRkTableProxy.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace cubes::test {

/// The SqlState of the TRkDatabaseException that `work` throws; "none" when it throws none.
template <typename Work>
std::string sqlStateOf(Work const& work) {
    try {
        work();
    } catch (TRkDatabaseException const& error) {
        return error.SqlState();
    }
    return "none";
}

/// The message of the TRkDatabaseException that `work` throws; empty when it throws none.
template <typename Work>
std::string messageOf(Work const& work) {
    try {
        work();
    } catch (TRkDatabaseException const& error) {
        return error.what();
    }
    return {};
}

/// A database with a table "cube" ("cubenr", "name" of 8 characters, "usageCounter"), empty, and an open cursor on it.
class TableTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        database.emplace(backend());
        connection.emplace(database->url());
        connection->Execute("CREATE TABLE \"cube\" (\"cubenr\" smallint PRIMARY KEY, \"name\" varchar(8), "
                            "\"usageCounter\" integer)");
        table.SetConnection(&*connection);
        table.Open();
    }

    void add(long number, std::string const& name) {
        table.Append();
        table.FieldByName("cubenr")->SetAsInteger(number);
        table.FieldByName("name")->SetAsString(name.c_str());
        table.Post();
    }
    /// Rows numbered from 1, written without the library's knowledge.
    void fill(int count) {
        std::string const source =
            backend() == Backend::sqlite
                ? "WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM s WHERE i < " + std::to_string(count) +
                      ") "
                : "WITH s AS (SELECT i FROM generate_series(1, " + std::to_string(count) + ") AS i) ";
        database->execute(source + "INSERT INTO \"cube\" SELECT i, 'n' || i, i * 2 FROM s");
    }
    std::vector<long> walk() {
        std::vector<long> numbers;
        for (; !table.GetEof(); table.Next()) numbers.push_back(table.FieldByName("cubenr")->AsInteger());
        return numbers;
    }
    Rows rows() const { return database->sql("SELECT * FROM \"cube\" ORDER BY \"cubenr\""); }

    std::optional<TestDatabase> database;
    std::optional<Pgaccess::TPgConnection> connection;
    Rktable::TRkTableProxy table{"cube", "", "register"};
};

}
