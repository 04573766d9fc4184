#include "host/database/sqlite/Session.h"

#include "host/database/Conversion.h"
#include "host/database/DatabaseUrl.h"
#include "host/database/SqlState.h"
#include "host/database/sqlite/Handle.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"

#include <sqlite3.h>

#include <algorithm>

namespace cubes::database::sqlite {

namespace {

bool holds(std::string const& text, char const* part) {
    return text.find(part) != std::string::npos;
}

// The file keeps the declared type as it was written; what it means follows SQLite's own rules.
Column columnOf(std::string name, std::string const& declaration) {
    std::string const type = platform::lowerCase(declaration);
    Column column{std::move(name)};
    if (holds(type, "int")) {
        column.type = ColumnType::number;
        if (holds(type, "smallint") || holds(type, "int2")) column.greatest = 32767;
    } else if (holds(type, "char") || holds(type, "text") || holds(type, "clob")) {
        column.type = ColumnType::text;
        std::size_t const open = type.find('(');
        if (open != std::string::npos) column.size = static_cast<std::size_t>(leadingNumber(type.substr(open + 1)));
    }
    return column;
}

// Releases the file's lock, also after an error.
struct Reset {
    sqlite3_stmt* statement;
    ~Reset() { sqlite3_reset(statement); }
};

Value cell(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return static_cast<long long>(sqlite3_column_int64(statement, column));
    default:
        break;
    }
    auto const* const text = reinterpret_cast<char const*>(sqlite3_column_text(statement, column));
    if (!text) return std::string();
    return platform::fromUtf8({text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))});
}

}

Session::Session(std::string const& url) : database::Session(url), handle_(std::make_shared<Handle>(sqlitePath(url))) {}

std::unique_ptr<database::Statement> Session::prepare(std::string sql, ValueTypes /*types*/) {
    return std::make_unique<Statement>(handle_, mutex(), std::move(sql), SQLITE_PREPARE_PERSISTENT);
}

std::unique_ptr<database::Statement> Session::prepareOnce(std::string sql, ValueTypes /*types*/) {
    return std::make_unique<Statement>(handle_, mutex(), std::move(sql), 0u);
}

std::optional<Table> Session::describe(std::string const& schema, std::string const& name) {
    Value const storedName(schema.empty() ? name : schema + "." + name);
    Cells cells;
    std::size_t const count =
        prepareOnce("SELECT c.name, c.type, c.pk FROM sqlite_schema t, pragma_table_info(t.name) c "
                    "WHERE t.type = 'table' AND t.name = ?1 ORDER BY c.cid",
            {})
            ->run(std::span(&storedName, 1), cells);
    if (count == 0) return std::nullopt;

    Table table{schema, name, dialect_.qualifiedName(schema, name), {}, {}, false};
    std::vector<std::pair<long long, std::size_t>> key;
    for (std::size_t i = 0; i < count; ++i) {
        auto const row = cells.row(i, 3);
        table.columns.push_back(columnOf(row[0].Text(), row[1].Text()));
        if (row[2].Number() > 0) key.emplace_back(row[2].Number(), i);
    }
    std::sort(key.begin(), key.end());
    for (auto const& [rank, column] : key) table.key.push_back(column);
    if (!table.key.empty()) return table;
    table.hasRowNumbers = true;
    table.key = {count};
    table.columns.push_back({"rowid", ColumnType::number});
    return table;
}

std::string Session::databaseIdentity() {
    return platform::fromPath(platform::withoutLinks(platform::toPath(platform::absolutePath(sqlitePath(url())))));
}

void Session::execute(std::string const& sql) {
    auto const held = lock();
    handle_->execute(sql);
}

// SQLite counts locks for each process, and the child's count includes locks that only its parent
// holds: the parent could then remove the log that the child writes to.
void Session::abandon() {
    throw TRkDatabaseException("cannot use " + url() +
                                   " in a forked process: SQLite does not allow for it; close the database before "
                                   "forking, and open it in each process",
        sqlstate::notConnected);
}

void Session::createSchema(std::string const& /*schema*/) {}

Statement::Statement(std::shared_ptr<Handle const> handle, std::shared_ptr<std::recursive_mutex> mutex, std::string sql,
    unsigned prepareFlags)
    : handle_(std::move(handle)), mutex_(std::move(mutex)), sql_(std::move(sql)) {
    std::lock_guard const lock(*mutex_);
    std::string const text = platform::toUtf8(sql_);
    if (sqlite3_prepare_v3(handle_->get(), text.data(), static_cast<int>(text.size()), prepareFlags, &statement_,
            nullptr) != SQLITE_OK)
        throw handle_->failure(sql_);
}

Statement::~Statement() {
    if (handle_->isInherited()) return;
    std::lock_guard const lock(*mutex_);
    sqlite3_finalize(statement_);
}

void Statement::bind(int place, Value const& value) {
    int code = SQLITE_OK;
    if (value.IsNumber())
        code = sqlite3_bind_int64(statement_, place, value.Number());
    else if (value.IsText()) {
        std::string const text = platform::toUtf8(value.Text());
        code = sqlite3_bind_text(statement_, place, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    } else
        code = sqlite3_bind_null(statement_, place);
    if (code != SQLITE_OK) throw handle_->failure(sql_);
}

void Statement::addRow(int columns, Cells& cells) {
    for (int i = 0; i < columns; ++i) cells.add() = cell(statement_, i);
}

std::size_t Statement::run(std::span<Value const> values, Cells& cells) {
    std::lock_guard const lock(*mutex_);
    Handle::Turn const turn(*handle_, statement_);
    Reset const reset{statement_};
    int place = 0;
    for (Value const& value : values) bind(++place, value);
    int const columns = sqlite3_column_count(statement_);
    std::size_t rows = 0;
    int code = sqlite3_step(statement_);
    for (; code == SQLITE_ROW; code = sqlite3_step(statement_)) {
        addRow(columns, cells);
        ++rows;
    }
    if (code != SQLITE_DONE) throw handle_->failure(sql_);
    handle_->requireUnchanged();
    return columns == 0 ? static_cast<std::size_t>(sqlite3_changes(handle_->get())) : rows;
}

}
