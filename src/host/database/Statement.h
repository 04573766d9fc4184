#pragma once

#include <cubes/database/Value.h>

#include <cstddef>
#include <span>
#include <vector>

namespace cubes::database {

using Rktable::Value;

/// Rows of values one behind the other. Clearing keeps the memory for the rows to come.
class Cells {
public:
    void clear() noexcept { used_ = 0; }
    std::size_t size() const noexcept { return used_; }
    Value& add() {
        if (used_ == values_.size()) values_.emplace_back();
        return values_[used_++];
    }
    void reserve(std::size_t count) { values_.reserve(count); }
    std::span<Value> row(std::size_t index, std::size_t width) {
        return std::span(values_).subspan(index * width, width);
    }

private:
    std::vector<Value> values_;
    std::size_t used_ = 0;
};

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
