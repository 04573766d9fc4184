#pragma once

#include "host/database/Dialect.h"
#include "host/database/Table.h"

#include <string>
#include <vector>

namespace cubes::database {

/// Writes the SQL of a cursor's operations on one table. Columns are given by their places in
/// the table; values stand in the order in which their columns are given.
class Sql {
public:
    using Columns = std::vector<std::size_t>;

    Sql(Table const& table, Dialect const& dialect) : table_(table), dialect_(dialect) {}

    /// The first row, in the order of the primary key, whose columns equal the values.
    std::string lookUp(Columns const& columns, Match match, std::string const& filter) const;
    /// At most `limit` rows from the first on.
    std::string firstRows(std::string const& filter, std::size_t limit) const;
    /// Rows behind a key whose first column equals the key's; values: the key.
    std::string rowsOfSameGroup(std::string const& filter, std::size_t limit) const;
    /// Rows whose first key column lies behind a value.
    std::string rowsOfLaterGroups(std::string const& filter, std::size_t limit) const;
    std::string greatest(std::size_t column, std::string const& filter) const;

    /// Statements that change answer with the whole row as it now is.
    std::string insert(Columns const& columns) const;
    /// Values: those set, then the key.
    std::string update(Columns const& columns) const;
    std::string remove() const;
    /// Answers with a row when one has the key, in which null equals null.
    std::string isThere() const;
    /// Answers with the row of the key, which others then cannot change until the transaction ends.
    std::string lockRow() const;
    std::string raise(std::size_t column) const;
    std::string lower(std::size_t column) const;

    std::vector<ColumnType> types(Columns const& columns) const;
    /// Of the set columns, then the key.
    std::vector<ColumnType> typesWithKey(Columns columns) const;

private:
    std::string name(std::size_t column) const { return quoted(table_.columns[column].name); }
    std::string names(Columns const& columns) const;
    std::string allColumns() const;
    std::string keyOrder() const { return " ORDER BY " + names(table_.key); }
    std::string places(std::size_t first, std::size_t count) const;
    std::string isAtKey(std::size_t firstPlace) const;
    bool coversKey(Columns const& columns) const;
    std::string rows(std::string const& condition, std::string const& filter, std::size_t limit) const;
    std::string change(std::string const& assignments, std::size_t firstPlace) const;
    std::string returning() const { return " RETURNING " + allColumns(); }

    Table const& table_;
    Dialect const& dialect_;
};

}
