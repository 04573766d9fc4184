#include "host/database/Table.h"
#include "host/platform/NarrowText.h"

#include "host/database/Session.h"
#include "host/database/Sql.h"
#include "host/database/SqlState.h"

#include <cubes/database/TRkDatabaseException.h>

#include <algorithm>

namespace cubes::database {

namespace {

bool equalsIgnoringCase(std::string_view first, std::string_view second) {
    return std::equal(first.begin(), first.end(), second.begin(), second.end(),
        [](char a, char b) { return platform::asciiLower(a) == platform::asciiLower(b); });
}

}

std::size_t KnownTable::find(std::string_view name) const noexcept {
    std::size_t const count = description_.declaredColumns();
    for (std::size_t i = 0; i < count; ++i)
        if (description_.columns[i].name == name) return i;
    std::size_t match = count;
    for (std::size_t i = 0; i < count; ++i) {
        if (!equalsIgnoringCase(description_.columns[i].name, name)) continue;
        if (match != count) return count;
        match = i;
    }
    return match;
}

std::size_t KnownTable::column(std::string_view name) const {
    std::size_t const column = find(name);
    if (column < description_.declaredColumns()) return column;
    throw TRkDatabaseException(
        "table " + description_.quotedName + " has no column '" + std::string(name) + "'", sqlstate::missingColumn);
}

std::vector<std::size_t> KnownTable::columns(std::string_view names) const {
    std::vector<std::size_t> result;
    for (std::size_t start = 0; start <= names.size();) {
        std::size_t const end = std::min(names.find(';', start), names.size());
        result.push_back(column(names.substr(start, end - start)));
        start = end + 1;
    }
    return result;
}

LookUp const& KnownTable::lookUp(std::string_view keys, Match match) {
    for (auto const& known : lookUps_)
        if (known->match == match && known->keys == keys) return *known;
    auto made = std::make_unique<LookUp>(LookUp{std::string(keys), match, columns(keys), nullptr});
    Sql const sql(description_, session_.dialect());
    made->statement = &statement(sql.lookUp(made->columns, match, {}), sql.types(made->columns));
    return *lookUps_.emplace_back(std::move(made));
}

std::unique_ptr<Statement> KnownTable::prepare(Operation operation, std::vector<std::size_t> const& columns) const {
    Sql const sql(description_, session_.dialect());
    auto const keyTypes = sql.types(description_.key);
    switch (operation) {
    case Operation::insert:
        return session_.prepare(sql.insert(columns), sql.types(columns));
    case Operation::update:
        return session_.prepare(sql.update(columns), sql.typesWithKey(columns));
    case Operation::remove:
        return session_.prepare(sql.remove(), keyTypes);
    case Operation::isThere:
        return session_.prepare(sql.isThere(), keyTypes);
    case Operation::lockRow:
        return session_.prepare(sql.lockRow(), keyTypes);
    case Operation::raise:
        return session_.prepare(sql.raise(columns[0]), keyTypes);
    case Operation::lower:
        break;
    }
    return session_.prepare(sql.lower(columns[0]), keyTypes);
}

Statement& KnownTable::statement(Operation operation, std::vector<std::size_t> const& columns) {
    for (auto const& known : prepared_)
        if (known.operation == operation && known.columns == columns) return *known.statement;
    prepared_.push_back({operation, columns, prepare(operation, columns)});
    return *prepared_.back().statement;
}

Statement& KnownTable::statement(std::string const& sql, std::vector<ColumnType> const& types) {
    auto& statement = statements_[sql];
    if (!statement) statement = session_.prepare(sql, types);
    return *statement;
}

}
