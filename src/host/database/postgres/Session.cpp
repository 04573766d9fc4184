#include "host/database/postgres/Session.h"

#include "host/database/Conversion.h"
#include "host/database/DatabaseUrl.h"
#include "host/database/LockTimeout.h"
#include "host/database/SqlState.h"

#include <libpq-fe.h>

#include <algorithm>
#include <charconv>
#include <cstring>

namespace cubes::database::postgres {

namespace {

// A look-up's plan does not depend on its values, so that planning once is enough. The result is
// whether there is a collation that knows the letters of all languages, and how long locks are waited for.
constexpr char const* introduction =
    "SET plan_cache_mode = force_generic_plan;"
    "SELECT EXISTS (SELECT FROM pg_catalog.pg_collation WHERE collname = 'und-x-icu'"
    " AND collnamespace = 'pg_catalog'::regnamespace) AND getdatabaseencoding() = 'UTF8',"
    " current_setting('lock_timeout')";

// The URL, the environment of libpq, the role or the database may set a limit; there always is one.
std::string settingLockTimeout() {
    auto const given = givenLockTimeout();
    auto const milliseconds = std::to_string(given.value_or(defaultLockTimeout).count());
    return "SELECT set_config('lock_timeout', '" + milliseconds + "', false)" +
           (given ? ";" : " WHERE current_setting('lock_timeout') = '0';");
}

constexpr char const* description =
    "SELECT a.attname, t.typname, a.atttypmod, array_position(i.indkey::int2[], a.attnum)"
    " FROM pg_catalog.pg_class c"
    " JOIN pg_catalog.pg_attribute a ON a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped"
    " JOIN pg_catalog.pg_type t ON t.oid = a.atttypid"
    " LEFT JOIN pg_catalog.pg_index i ON i.indrelid = c.oid AND i.indisprimary"
    " WHERE c.oid = to_regclass($1) AND c.relkind IN ('r', 'p') ORDER BY a.attnum";

struct Type {
    char const* name;
    ColumnType type;
    long long greatest;
};

constexpr Type typeNames[] = {
    {"int2", ColumnType::number, 32767},
    {"int4", ColumnType::number, 2147483647},
    {"int8", ColumnType::number, std::numeric_limits<long long>::max()},
    {"varchar", ColumnType::text, 0},
    {"bpchar", ColumnType::text, 0},
    {"text", ColumnType::text, 0},
};

// `modifier`: for texts the declared size and 4, the length of a header; -1 without a limit.
Column columnOf(std::string const& name, std::string const& typeName, long long modifier) {
    Column column{name};
    for (Type const& type : typeNames) {
        if (typeName != type.name) continue;
        column.type = type.type;
        column.greatest = type.greatest;
        if (type.type == ColumnType::text && modifier > 4) column.size = static_cast<std::size_t>(modifier - 4);
    }
    return column;
}

bool isRollback(std::string_view sql) {
    constexpr std::string_view rollback = "ROLLBACK";
    return std::ranges::equal(
        sql, rollback, [](char a, char b) { return a == b || (a >= 'a' && a <= 'z' && a - 'a' + 'A' == b); });
}

// The server's numbers for its types. A whole number is sent as the widest, so that one which
// the column cannot hold is simply not found; 0 lets the server choose.
constexpr Oid int2 = 21, int4 = 23, int8 = 20, text = 25;

Oid parameterType(ColumnType type) {
    switch (type) {
    case ColumnType::number:
        return int8;
    case ColumnType::text:
        return text;
    case ColumnType::other:
        break;
    }
    return 0;
}

bool isWholeNumber(Oid type) {
    return type == int2 || type == int4 || type == int8;
}

Value cell(PGresult const* result, int row, int column, bool isNumber) {
    if (PQgetisnull(result, row, column)) return {};
    char const* const bytes = PQgetvalue(result, row, column);
    int const length = PQgetlength(result, row, column);
    if (!isNumber) return std::string(bytes, static_cast<std::size_t>(length));
    long long number = 0;
    std::from_chars(bytes, bytes + length, number);
    return number;
}

}

void UnusedStatements::add(std::string const& name, unsigned long connection) noexcept {
    try {
        std::lock_guard const guard(mutex_);
        unused_.emplace_back(name, connection);
    } catch (std::exception const&) {
        // The server keeps it until the connection ends.
    }
}

std::vector<std::string> UnusedStatements::take(unsigned long connection) {
    std::lock_guard const guard(mutex_);
    std::vector<std::string> names;
    for (auto& [name, preparedFor] : std::exchange(unused_, {}))
        if (preparedFor == connection) names.push_back(std::move(name));
    return names;
}

Session::Session(std::string const& url) : database::Session(withoutPassword(url)), fullUrl_(url) {
    connect();
}

void Session::connect() {
    server_.reset();
    server_ = std::make_unique<Handle>(fullUrl_);
    ++connectionNumber_;
    Result const answer = server_->execute(settingLockTimeout() + introduction);
    bool const knowsLetters = std::strcmp(PQgetvalue(answer.get(), 0, 0), "t") == 0;
    dialect_.setCollation(knowsLetters ? "pg_catalog.\"und-x-icu\"" : "");
    server_->waitsForLocks(PQgetvalue(answer.get(), 0, 1));
}

Handle const& Session::connected() {
    if (server_ && !server_->isLost()) return *server_;
    if (isInTransaction())
        throw TRkDatabaseException(
            url() + ": the connection was lost, and with it what the transaction did; roll it back",
            sqlstate::transactionLost);
    connect();
    return *server_;
}

std::unique_ptr<database::Statement> Session::prepare(std::string sql, ValueTypes types) {
    auto const held = lock();
    deallocateUnused();
    return std::make_unique<Statement>(*this, std::move(sql), types, "cubes_" + std::to_string(++statements_));
}

// A failed transaction executes no statement; the names are then kept for the next time.
void Session::deallocateUnused() {
    if (!server_ || server_->isLost() || isInTransaction()) return;
    try {
        for (auto const& name : unused_->take(connectionNumber_)) server_->execute("DEALLOCATE " + quoted(name));
    } catch (TRkDatabaseException const&) {
        // What is asked of the server next reports that it is lost.
    }
}

std::unique_ptr<database::Statement> Session::prepareOnce(std::string sql, ValueTypes types) {
    return std::make_unique<Statement>(*this, std::move(sql), types, "");
}

std::optional<Table> Session::describe(std::string const& schema, std::string const& name) {
    std::string const quotedName = dialect_.qualifiedName(schema, name);
    Value const argument(quotedName);
    Cells cells;
    auto const held = lock();
    if (!description_) description_ = prepare(description, {ColumnType::text});
    std::size_t const count = description_->run(std::span(&argument, 1), cells);
    if (count == 0) return std::nullopt;

    Table table{schema, name, quotedName, {}, {}, false};
    std::vector<std::pair<long long, std::size_t>> key;
    bool const countsBytes = connected().encoding() == "SQL_ASCII";
    for (std::size_t i = 0; i < count; ++i) {
        auto const row = cells.row(i, 4);
        table.columns.push_back(columnOf(row[0].Text(), row[1].Text(), row[2].Number()));
        table.columns.back().sizeIsInBytes = countsBytes;
        if (!row[3].IsNull()) key.emplace_back(row[3].Number(), i);
    }
    std::sort(key.begin(), key.end());
    for (auto const& [rank, column] : key) table.key.push_back(column);
    if (!table.key.empty()) return table;
    table.hasRowNumbers = true;
    table.key = {count};
    table.columns.push_back({"ctid", ColumnType::other});
    return table;
}

std::string Session::databaseIdentity() {
    Cells cells;
    // A copied server has the same identifier.
    prepareOnce("SELECT concat_ws(' ', system_identifier, pg_postmaster_start_time(), current_database()) "
                "FROM pg_catalog.pg_control_system()",
        {})
        ->run({}, cells);
    return cells.row(0, 1)[0].Text();
}

void Session::execute(std::string const& sql) {
    auto const held = lock();
    // What was lost is rolled back by that; the next statement connects anew.
    if (isRollback(sql) && isInTransaction() && server_->isLost()) return server_.reset();
    connected().execute(sql);
}

void Session::abandon() {
    server_.reset();
}

void Session::createSchema(std::string const& schema) {
    Value const argument(quoted(schema));
    Cells cells;
    std::string const question = "SELECT 1 WHERE to_regnamespace($1) IS NOT NULL";
    if (prepareOnce(question, {ColumnType::text})->run(std::span(&argument, 1), cells) == 0)
        execute("CREATE SCHEMA " + quoted(schema));
}

Statement::Statement(Session& session, std::string sql, ValueTypes const& types, std::string name)
    : session_(session), sql_(std::move(sql)), name_(std::move(name)), unused_(session.unusedStatements()) {
    for (ColumnType const type : types) types_.push_back(parameterType(type));
    parameters_.resize(types_.size());
    numbers_.resize(types_.size());
}

Statement::~Statement() {
    if (!name_.empty() && preparedFor_ != 0) unused_->add(name_, preparedFor_);
}

void Statement::setParameters(std::span<Value const> values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        parameters_[i] = nullptr;
        if (values[i].IsText()) parameters_[i] = values[i].Text().c_str();
        if (!values[i].IsNumber()) continue;
        auto& digits = numbers_[i];
        *std::to_chars(digits.data(), digits.data() + digits.size() - 1, values[i].Number()).ptr = '\0';
        parameters_[i] = digits.data();
    }
}

Result Statement::answer(Handle const& server) {
    int const count = static_cast<int>(types_.size());
    if (name_.empty())
        return server.checked(
            PQexecParams(server.get(), sql_.c_str(), count, types_.data(), parameters_.data(), nullptr, nullptr, 0),
            sql_);
    if (preparedFor_ != session_.connectionNumber()) {
        server.checked(PQprepare(server.get(), name_.c_str(), sql_.c_str(), count, types_.data()), sql_);
        preparedFor_ = session_.connectionNumber();
    }
    return server.checked(
        PQexecPrepared(server.get(), name_.c_str(), count, parameters_.data(), nullptr, nullptr, 0), sql_);
}

std::size_t Statement::run(std::span<Value const> values, Cells& cells) {
    auto const held = session_.lock();
    Handle const& server = session_.connected();
    setParameters(values);
    Result const result = answer(server);
    if (PQresultStatus(result.get()) == PGRES_COMMAND_OK)
        return static_cast<std::size_t>(leadingNumber(PQcmdTuples(result.get())));
    int const rows = PQntuples(result.get());
    int const columns = PQnfields(result.get());
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            cells.add() = cell(result.get(), row, column, isWholeNumber(PQftype(result.get(), column)));
    return static_cast<std::size_t>(rows);
}

}
