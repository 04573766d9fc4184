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
    /// The prepared statement of that text, made at its first use.
    Statement& statement(std::string const& sql, std::vector<ColumnType> const& types);

private:
    Session& session_;
    Table description_;
    std::unordered_map<std::string, std::unique_ptr<Statement>> statements_;
    // Found by walking: a table has a handful. Kept at fixed places, as cursors refer to them.
    std::vector<std::unique_ptr<LookUp>> lookUps_;
};

}
