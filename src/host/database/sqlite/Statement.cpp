#include "host/database/sqlite/Statement.h"

#include "host/database/sqlite/Handle.h"
#include "host/platform/NarrowText.h"

#include <sqlite3.h>

namespace cubes::database::sqlite {

namespace {

// Lets go of the file's lock, whatever happens.
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
