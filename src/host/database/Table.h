#pragma once

#include <cstddef>
#include <limits>
#include <string>
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
    /// primary key, that column stands last and is the key.
    std::vector<Column> columns;
    /// The columns of the primary key, in its order.
    std::vector<std::size_t> key;
    bool hasRowNumbers = false;

    /// The columns that were declared.
    std::size_t declaredColumns() const noexcept { return columns.size() - (hasRowNumbers ? 1 : 0); }
};

}
