#pragma once

#include <cstddef>
#include <vector>

namespace cubes::tool {

/// A value for every pair of zones, in double precision for computing.
class SquareTable {
public:
    explicit SquareTable(std::size_t size) : size_(size), values_(size * size) {}

    std::size_t size() const noexcept { return size_; }
    double& at(std::size_t row, std::size_t column) { return values_[row * size_ + column]; }
    double at(std::size_t row, std::size_t column) const { return values_[row * size_ + column]; }

    /// A table whose values are those of a function of row and column.
    template <typename Function>
    static SquareTable of(std::size_t size, Function valueOf) {
        SquareTable table(size);
        for (std::size_t row = 0; row < size; ++row)
            for (std::size_t column = 0; column < size; ++column) table.at(row, column) = valueOf(row, column);
        return table;
    }

private:
    std::size_t size_;
    std::vector<double> values_;
};

}
