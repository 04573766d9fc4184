#include "host/database/Sql.h"

#include <algorithm>

namespace cubes::database {

namespace {

// Texts joined by a separator, each made by `make` from its number.
template <typename Make>
std::string joined(std::size_t count, std::string const& separator, Make const& make) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += (i ? separator : std::string()) + make(i);
    return text;
}

std::string where(std::string const& condition, std::string const& filter) {
    if (filter.empty()) return condition.empty() ? std::string() : " WHERE " + condition;
    return " WHERE (" + filter + ")" + (condition.empty() ? std::string() : " AND " + condition);
}

}

std::string quoted(std::string const& identifier) {
    std::string text = "\"";
    for (char const c : identifier) text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + "\"";
}

std::string Sql::names(Columns const& columns) const {
    return joined(columns.size(), ", ", [&](std::size_t i) { return name(columns[i]); });
}

std::string Sql::allColumns() const {
    return joined(table_.columns.size(), ", ", [this](std::size_t i) { return name(i); });
}

std::string Sql::places(std::size_t first, std::size_t count) const {
    return joined(count, ", ", [&](std::size_t i) { return dialect_.placeholder(first + i); });
}

std::string Sql::isAtKey(std::size_t firstPlace) const {
    return joined(table_.key.size(), " AND ",
        [&](std::size_t i) { return name(table_.key[i]) + " = " + dialect_.placeholder(firstPlace + i); });
}

std::string Sql::rows(std::string const& condition, std::string const& filter, std::size_t limit) const {
    return "SELECT " + allColumns() + " FROM " + table_.quotedName + where(condition, filter) + keyOrder() + " LIMIT " +
           std::to_string(limit);
}

bool Sql::coversKey(Columns const& columns) const {
    return std::all_of(table_.key.begin(), table_.key.end(),
        [&](std::size_t column) { return std::find(columns.begin(), columns.end(), column) != columns.end(); });
}

std::string Sql::lookUp(Columns const& columns, Match match, std::string const& filter) const {
    auto const equals = [&](std::size_t i) {
        bool const isText = table_.columns[columns[i]].type == ColumnType::text;
        return dialect_.textEquals(name(columns[i]), dialect_.placeholder(i + 1), isText ? match : Match::exact);
    };
    std::string const condition = joined(columns.size(), " AND ", equals);
    // A whole key has one row: there is nothing to sort and to cut off.
    if (match == Match::exact && coversKey(columns))
        return "SELECT " + allColumns() + " FROM " + table_.quotedName + where(condition, filter);
    return rows(condition, filter, 1);
}

std::string Sql::firstRows(std::string const& filter, std::size_t limit) const {
    return rows({}, filter, limit);
}

// A walk continues after the last row read. One comparison of whole keys would say the same as
// these two steps, but under a filter on the first key column not every planner can use it: it
// would then read the group from its beginning for each batch.
std::string Sql::rowsOfSameGroup(std::string const& filter, std::size_t limit) const {
    Columns const rest(table_.key.begin() + 1, table_.key.end());
    return rows(name(table_.key[0]) + " = " + dialect_.placeholder(1) + " AND (" + names(rest) + ") > (" +
                    places(2, rest.size()) + ")",
        filter, limit);
}

std::string Sql::rowsOfLaterGroups(std::string const& filter, std::size_t limit) const {
    return rows(name(table_.key[0]) + " > " + dialect_.placeholder(1), filter, limit);
}

std::string Sql::greatest(std::size_t column, std::string const& filter) const {
    return "SELECT max(" + name(column) + ") FROM " + table_.quotedName + where({}, filter);
}

std::string Sql::insert(Columns const& columns) const {
    std::string const content = columns.empty()
                                    ? std::string(" DEFAULT VALUES")
                                    : " (" + names(columns) + ") VALUES (" + places(1, columns.size()) + ")";
    return "INSERT INTO " + table_.quotedName + content + returning();
}

std::string Sql::change(std::string const& assignments, std::size_t firstPlace) const {
    return "UPDATE " + table_.quotedName + " SET " + assignments + " WHERE " + isAtKey(firstPlace) + returning();
}

std::string Sql::update(Columns const& columns) const {
    auto const assignment = [&](std::size_t i) { return name(columns[i]) + " = " + dialect_.placeholder(i + 1); };
    return change(joined(columns.size(), ", ", assignment), columns.size() + 1);
}

std::string Sql::remove() const {
    return "DELETE FROM " + table_.quotedName + " WHERE " + isAtKey(1);
}

std::string Sql::isThere() const {
    return "SELECT 1 FROM " + table_.quotedName + " WHERE " + joined(table_.key.size(), " AND ", [&](std::size_t i) {
        return name(table_.key[i]) + " IS NOT DISTINCT FROM " + dialect_.placeholder(i + 1);
    });
}

std::string Sql::lockRow() const {
    return "SELECT " + allColumns() + " FROM " + table_.quotedName + " WHERE " + isAtKey(1) + dialect_.lockRows();
}

std::string Sql::raise(std::size_t column) const {
    return change(name(column) + " = coalesce(" + name(column) + ", 0) + 1", 1);
}

std::string Sql::lower(std::size_t column) const {
    std::string const counter = name(column);
    return change(counter + " = CASE WHEN " + counter + " > 0 THEN " + counter + " - 1 ELSE " + counter + " END", 1);
}

std::vector<ColumnType> Sql::types(Columns const& columns) const {
    std::vector<ColumnType> result;
    for (std::size_t const column : columns) result.push_back(table_.columns[column].type);
    return result;
}

std::vector<ColumnType> Sql::typesWithKey(Columns columns) const {
    columns.insert(columns.end(), table_.key.begin(), table_.key.end());
    return types(columns);
}

}
