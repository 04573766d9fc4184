#pragma once

#include "host/database/Dialect.h"
#include "host/database/Statement.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace cubes::database {

enum class ColumnType { number, text, other };

struct Column {
    std::string name;
    ColumnType type = ColumnType::other;
    /// The greatest number of characters of a text; 0: no limit.
    std::size_t size = 0;
    /// Whether the database counts bytes instead, because it knows no encoding.
    bool sizeIsInBytes = false;
    /// The greatest number that the column holds.
    long long greatest = std::numeric_limits<long long>::max();
};

/// What the database says of one table. Rows are read with all columns, in this order.
struct Table {
    std::string schema;
    std::string name;
    /// The table as SQL names it, quoted.
    std::string quotedName;
    /// Where the database numbers its rows in a column of its own because the table has no
    /// primary key, that column is the last and is the key.
    std::vector<Column> columns;
    /// The columns of the primary key, in its order.
    std::vector<std::size_t> key;
    bool hasRowNumbers = false;

    /// The columns that were declared.
    std::size_t declaredColumns() const noexcept { return columns.size() - (hasRowNumbers ? 1 : 0); }
};

class Session;

/// A look-up by the values of some columns.
struct LookUp {
    std::string keys;
    Match match = Match::exact;
    std::vector<std::size_t> columns;
    Statement* statement = nullptr;
};

/// What is done to one row. Values: those of the columns, if any, then the key.
enum class Operation { insert, update, remove, isThere, lockRow, raise, lower };

/// A table that a connection knows, with the statements prepared for it.
class KnownTable {
public:
    KnownTable(Session& session, Table description) : session_(session), description_(std::move(description)) {}

    Table const& description() const noexcept { return description_; }

    /// The column of that name: exactly, else by a single match without regard to letter case;
    /// declaredColumns() when there is none.
    std::size_t find(std::string_view name) const noexcept;
    /// The same. Throws TRkDatabaseException when there is none.
    std::size_t column(std::string_view name) const;
    /// The columns of names joined by ";".
    std::vector<std::size_t> columns(std::string_view names) const;

    /// The look-up by columns joined by ";". `texts` are compared as `match` says.
    LookUp const& lookUp(std::string_view keys, Match match);
    /// The prepared statement of an operation on those columns, found without its text.
    Statement& statement(Operation operation, std::vector<std::size_t> const& columns);
    /// The prepared statement of that text, made at its first use.
    Statement& statement(std::string const& sql, std::vector<ColumnType> const& types);

private:
    Session& session_;
    Table description_;
    struct Prepared {
        Operation operation;
        std::vector<std::size_t> columns;
        std::unique_ptr<Statement> statement;
    };
    std::unique_ptr<Statement> prepare(Operation operation, std::vector<std::size_t> const& columns) const;

    std::unordered_map<std::string, std::unique_ptr<Statement>> statements_;
    // Both are searched from the front: a table has a handful. Look-ups stay where they are, as
    // cursors refer to them.
    std::vector<Prepared> prepared_;
    std::vector<std::unique_ptr<LookUp>> lookUps_;
};

}
