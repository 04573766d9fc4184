#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace cubes::tool {

/// A table of values between zones as it comes from or goes to a file: trips, or a skim.
struct TripTable {
    int rows = 0;
    int columns = 0;
    /// Zone number of each row and column, in order. Empty when the file does not tell them, and
    /// for a table that is not square.
    std::vector<std::int32_t> zones;
    /// rows x columns values, row by row.
    std::vector<float> cells;
    /// What the reader of the file should be told; the table is usable all the same.
    std::vector<std::string> warnings;

    bool isSquare() const noexcept { return rows == columns; }
    /// Indices are zero-based. REQUIRES: they are within the table.
    float at(int row, int column) const { return cells[offset(row) + static_cast<std::size_t>(column)]; }
    float& at(int row, int column) { return cells[offset(row) + static_cast<std::size_t>(column)]; }
    std::span<float const> row(int index) const { return {cells.data() + offset(index), width()}; }
    std::span<float> row(int index) { return {cells.data() + offset(index), width()}; }

private:
    std::size_t width() const { return static_cast<std::size_t>(columns); }
    std::size_t offset(int index) const { return static_cast<std::size_t>(index) * width(); }
};

}
