#include "host/database/sqlite/Session.h"

#include "host/database/Conversion.h"
#include "host/database/DatabaseUrl.h"
#include "host/database/sqlite/Statement.h"
#include "host/platform/NarrowText.h"

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

void Session::execute(std::string const& sql) {
    auto const held = lock();
    handle_->execute(sql);
}

void Session::createSchema(std::string const& /*schema*/) {}

}
