#include "host/database/postgres/Dialect.h"

namespace cubes::database::postgres {

std::string Dialect::placeholder(std::size_t number) const {
    return "$" + std::to_string(number);
}

std::string Dialect::qualifiedName(std::string const& schema, std::string const& table) const {
    return schema.empty() ? quoted(table) : quoted(schema) + "." + quoted(table);
}

Match Dialect::ignoringCase(std::string const& /*text*/) const {
    return Match::ignoringCase;
}

// Which letters lower() knows depends on the collation, and a database made with "C" knows ASCII
// only. The result is compared by its bytes.
std::string Dialect::lower(std::string const& text) const {
    std::string const collated = collation_.empty() ? text : text + " COLLATE " + collation_;
    return "(lower(" + collated + ") COLLATE \"C\")";
}

std::string Dialect::textEquals(std::string const& column, std::string const& place, Match match) const {
    return match == Match::exact ? column + " = " + place : lower(column) + " = " + lower(place);
}

std::string Dialect::tableOptions() const {
    return {};
}

std::string Dialect::caseIgnoringIndex(
    std::string const& table, std::string const& column, std::string const& key) const {
    return "CREATE INDEX ON " + quoted(table) + " (" + lower(quoted(column)) + ", " + quoted(key) + ")";
}

std::string Dialect::schemasWith(std::string const& table) const {
    return "SELECT nspname::text FROM pg_catalog.pg_class JOIN pg_catalog.pg_namespace n ON n.oid = relnamespace "
           "WHERE relkind IN ('r', 'p', 'v', 'f') AND relname = '" +
           table + "'";
}

std::string Dialect::beginWriting() const {
    return "BEGIN ISOLATION LEVEL READ COMMITTED";
}

// "IF NOT EXISTS" alone fails when two processes pass it at once.
std::string Dialect::lockDefinitions() const {
    return "SELECT pg_advisory_xact_lock(hashtext('cubes: table definitions'))";
}

// The weakest mode that also keeps others from locking rows: whoever holds one and waits for the table would deadlock
// with this transaction.
std::string Dialect::lockTable(std::string const& quotedTable) const {
    return "LOCK TABLE " + quotedTable + " IN EXCLUSIVE MODE";
}

std::string Dialect::lockRows() const {
    return " FOR UPDATE";
}

}
