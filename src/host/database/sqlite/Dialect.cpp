#include "host/database/sqlite/Dialect.h"

#include <algorithm>

namespace cubes::database::sqlite {

std::string Dialect::placeholder(std::size_t number) const {
    return "?" + std::to_string(number);
}

// A database file has no schemas; the schema is part of the table's name.
std::string Dialect::qualifiedName(std::string const& schema, std::string const& table) const {
    return quoted(schema.empty() ? table : schema + "." + table);
}

// An index on a function of ours would keep other programs from writing to the table, so the
// index knows ASCII only and the rest is searched through.
Match Dialect::ignoringCase(std::string const& text) const {
    bool const isAscii = std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
    return isAscii ? Match::ignoringAsciiCase : Match::ignoringCase;
}

std::string Dialect::textEquals(std::string const& column, std::string const& place, Match match) const {
    std::string const function = lowerCaseFunction;
    switch (match) {
    case Match::exact:
        break;
    case Match::ignoringAsciiCase:
        return column + " = " + place + " COLLATE NOCASE";
    case Match::ignoringCase:
        return function + "(" + column + ") = " + function + "(" + place + ")";
    }
    return column + " = " + place;
}

std::string Dialect::tableOptions() const {
    return " WITHOUT ROWID";
}

std::string Dialect::caseIgnoringIndex(
    std::string const& table, std::string const& column, std::string const& key) const {
    return "CREATE INDEX " + quoted(table + "_" + column) + " ON " + quoted(table) + " (" + quoted(column) +
           " COLLATE NOCASE, " + quoted(key) + ")";
}

// The schema is the part of a table's name before the last point.
std::string Dialect::schemasWith(std::string const& table) const {
    std::string const length = std::to_string(table.size() + 1);
    return "SELECT substr(name, 1, length(name) - " + length + ") FROM sqlite_master WHERE type IN ('table', 'view') " +
           "AND substr(name, -" + length + ") = '." + table + "'";
}

std::string Dialect::beginWriting() const {
    return "BEGIN IMMEDIATE";
}

std::string Dialect::lockDefinitions() const {
    return {};
}

// The whole database has one writer at a time: the one whose transaction wrote first, be it nothing.
std::string Dialect::lockTable(std::string const& quotedTable) const {
    return "DELETE FROM " + quotedTable + " WHERE 0";
}

std::string Dialect::lockRows() const {
    return {};
}

}
