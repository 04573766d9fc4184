#pragma once

#include "host/database/Dialect.h"
#include "host/database/Statement.h"
#include "host/database/Table.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace cubes::database {

class Session;

/// A look-up by the values of some columns.
struct LookUp {
    std::string keys;
    Match match = Match::exact;
    std::vector<std::size_t> columns;
    Statement* statement = nullptr;
};

/// What is done to one row. Values: those of the columns, if any, then the key.
enum class Operation { insert, update, remove, isThere, raise, lower };

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
