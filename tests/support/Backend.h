#pragma once

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

class TRkGlobalSettings;
namespace cubes {
class Project;
}

namespace cubes::test {

/// The kinds of database that a project may use. Tests run on both.
enum class Backend { sqlite, postgres };

std::string backendName(Backend backend);
inline void PrintTo(Backend backend, std::ostream* out) {
    *out << backendName(backend);
}

/// Rows as texts, as an independent client (sqlite3 or psql) reads them; null reads "NULL".
using Rows = std::vector<std::vector<std::string>>;
/// The same as one text, for comparisons: "1|Base" per line.
std::string joined(Rows const& rows);

/// An empty database of its own: an SQLite file in a temporary directory, or a database of the private PostgreSQL
/// server. Removed at the end.
class TestDatabase {
public:
    /// `options`: of CREATE DATABASE, after the name.
    explicit TestDatabase(Backend backend, std::string const& options = {});
    ~TestDatabase();
    TestDatabase(TestDatabase const&) = delete;
    TestDatabase& operator=(TestDatabase const&) = delete;

    Backend backend() const { return backend_; }
    std::string const& url() const { return url_; }
    /// The name of the table in SQL: "public"."cube4data1" or "public.cube4data1".
    std::string table(std::string const& schema, std::string const& name) const;
    /// Runs SQL in an independent client and returns the rows of its result. Throws on an error.
    Rows sql(std::string const& text) const;
    /// The same for statements without a result.
    void execute(std::string const& text) const { sql(text); }

private:
    Backend backend_;
    TempDir directory_;
    std::string name_;
    std::string url_;
};

/// A new project on such a database.
class TestProject {
public:
    explicit TestProject(Backend backend);
    ~TestProject();
    TestProject(TestProject const&) = delete;
    TestProject& operator=(TestProject const&) = delete;

    Project& project() { return *project_; }
    TRkGlobalSettings* settings();
    std::string root() const;
    /// With a trailing delimiter, as are paths that are followed by a file name.
    std::string matrixDirectory() const;
    TestDatabase const& database() const { return database_; }
    Rows sql(std::string const& text) const { return database_.sql(text); }
    void execute(std::string const& text) const { database_.execute(text); }

private:
    TestDatabase database_;
    TempDir directory_;
    std::unique_ptr<Project> project_;
};

/// The base of suites over both backends:
///
///     class Register : public cubes::test::BackendTest {};
///     CUBES_BOTH_BACKENDS(Register);
///     TEST_P(Register, startsEmpty) { TestProject project(backend()); ... }
///
/// Without a PostgreSQL server its tests are skipped; where CI=true they fail.
class BackendTest : public testing::TestWithParam<Backend> {
protected:
    void SetUp() override;
    Backend backend() const { return GetParam(); }
};

/// Ends the running test when that backend is not available: skipped, or failed if CI=true.
void requireBackend(Backend backend);

/// The URL of a database on the private PostgreSQL server.
std::string postgresUrl(std::string const& database);
/// The port on 127.0.0.1 on which the private server requires passwords.
std::string postgresPort();

}

/// Makes every TEST_P of the suite a test on each backend, named "Suite.claim/sqlite" and "Suite.claim/postgres".
#define CUBES_BOTH_BACKENDS(suite)                                                                                     \
    INSTANTIATE_TEST_SUITE_P(, suite, testing::Values(cubes::test::Backend::sqlite, cubes::test::Backend::postgres),   \
        [](auto const& parameter) { return cubes::test::backendName(parameter.param); })
