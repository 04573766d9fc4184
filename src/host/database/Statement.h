#pragma once

#include "host/database/Cells.h"

#include <cstddef>
#include <span>

namespace cubes::database {

/// One SQL statement with its places for values.
class Statement {
public:
    Statement() = default;
    virtual ~Statement() = default;
    Statement(Statement const&) = delete;
    Statement& operator=(Statement const&) = delete;

    /// Runs it to its end, appends what it answers to `cells` and returns the number of rows; of a
    /// statement without an answer, how many rows it changed. Nothing stays locked. Throws TRkDatabaseException.
    virtual std::size_t run(std::span<Value const> values, Cells& cells) = 0;
};

}
