#include "support/Backend.h"

#include "support/Process.h"
#include "support/Required.h"
#include "support/platform/ServerHost.h"

#include <atomic>
#include <cstdlib>
#include <random>
#include <stdexcept>

#include <libpq-fe.h>

namespace cubes::test {

namespace {

constexpr char cellEnd = '\x1f';
constexpr char rowEnd = '\x1e';

std::string serverDirectory() {
    char const* const given = std::getenv("CUBES_TEST_POSTGRES");
    return given ? given : CUBES_TEST_POSTGRES_DIR;
}

bool serverIsHere() {
    return std::filesystem::exists(serverDirectory() + "/port");
}

std::string uniqueName() {
    static std::atomic<int> count = 0;
    return "t" + std::to_string(std::random_device{}()) + "_" + std::to_string(++count);
}

std::vector<std::string> split(std::string const& text, char end) {
    std::vector<std::string> pieces;
    for (std::size_t start = 0; start <= text.size();) {
        std::size_t const stop = std::min(text.find(end, start), text.size());
        pieces.push_back(text.substr(start, stop - start));
        start = stop + 1;
    }
    return pieces;
}

Rows rowsOf(std::string text) {
    Rows rows;
    while (!text.empty() && (text.back() == rowEnd || text.back() == '\n')) text.pop_back();
    if (text.empty()) return rows;
    for (auto const& row : split(text, rowEnd)) rows.push_back(split(row, cellEnd));
    return rows;
}

Rows ask(std::vector<std::string> const& client) {
    auto const result = run(client);
    if (result.exitCode != 0) throw std::runtime_error(client.back() + ": " + result.errors);
    return rowsOf(result.output);
}

Rows askPostgres(std::string const& url, std::string const& sql) {
    return ask({serverDirectory() + "/psql", "-X", "-q", "-A", "-t", "-v", "ON_ERROR_STOP=1", "-P", "null=NULL", "-F",
        std::string(1, cellEnd), "-R", std::string(1, rowEnd), "-d", url, "-c", sql});
}

Rows askSqlite(std::string const& file, std::string const& sql) {
    return ask({"sqlite3", "-batch", "-bail", "-noheader", "-nullvalue", "NULL", "-separator", std::string(1, cellEnd),
        "-newline", std::string(1, rowEnd), "-cmd", ".timeout 5000", file, sql});
}

}

std::string joined(Rows const& rows) {
    std::string text;
    for (auto const& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) text += (i ? "|" : "") + row[i];
        text += "\n";
    }
    return text;
}

std::string backendName(Backend backend) {
    return backend == Backend::sqlite ? "sqlite" : "postgres";
}

std::string postgresPort() {
    return rowsOf(readFile(serverDirectory() + "/port")).at(0).at(0);
}

std::string postgresUrl(std::string const& database) {
    return "postgresql://cubes@/" + database + "?host=" + serverHost(serverDirectory()) + "&port=" + postgresPort();
}

namespace {

// Through libpq: starting an independent client takes longer than most tests.
void onServer(std::string const& sql) {
    std::unique_ptr<PGconn, decltype(&PQfinish)> const connection(
        PQconnectdb(postgresUrl("postgres").c_str()), PQfinish);
    std::unique_ptr<PGresult, decltype(&PQclear)> const result(PQexec(connection.get(), sql.c_str()), PQclear);
    if (PQresultStatus(result.get()) != PGRES_COMMAND_OK)
        throw std::runtime_error(sql + ": " + PQerrorMessage(connection.get()));
}

}

TestDatabase::TestDatabase(Backend backend, std::string const& options)
    : backend_(backend), name_(backend == Backend::sqlite ? directory_.file("cubes.db") : uniqueName()),
      url_(backend == Backend::sqlite ? "sqlite:" + name_ : postgresUrl(name_)) {
    if (backend == Backend::postgres) onServer("CREATE DATABASE " + name_ + " " + options);
}

TestDatabase::~TestDatabase() {
    if (backend_ == Backend::sqlite) return;
    try {
        onServer("DROP DATABASE " + name_ + " WITH (FORCE)");
    } catch (std::exception const&) {
        // The server is removed with all its databases when the tests end.
    }
}

std::string TestDatabase::table(std::string const& schema, std::string const& name) const {
    if (schema.empty()) return "\"" + name + "\"";
    return "\"" + schema + (backend_ == Backend::sqlite ? "." : "\".\"") + name + "\"";
}

Rows TestDatabase::sql(std::string const& text) const {
    return backend_ == Backend::sqlite ? askSqlite(name_, text) : askPostgres(url_, text);
}

void BackendTest::SetUp() {
    requireBackend(backend());
}

void requireBackend(Backend backend) {
    if (backend == Backend::sqlite || serverIsHere()) return;
    if (everythingIsRequired()) FAIL() << "no PostgreSQL server in " << serverDirectory();
    GTEST_SKIP() << "SKIPPED: no PostgreSQL server; run: tests/support/postgres setup " << serverDirectory();
}

}
