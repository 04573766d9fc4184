#pragma once

#include <cubes/matrix/TRkMatrix.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace cubes::tool {

/// The cells of a matrix file: trips between zones, or a skim.
struct TripTable {
    int rows = 0;
    int columns = 0;
    /// The zone number of each row and column, in order. Empty when the file holds none, and for a table
    /// that is not square.
    std::vector<std::int32_t> zones;
    /// rows x columns values, row by row.
    std::vector<float> cells;
    /// What looks wrong in the file although the table is usable.
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

/// A matrix in memory with the table's cells and zone numbers.
TRkMatrix matrixOf(TripTable const& table);
/// The matrix's cells and zone numbers.
TripTable tableOf(TRkMatrix const& matrix);

/// Collects the zones and cells of a file that lists them in any order, and builds their table. Cells
/// that the file does not list are 0.
class CellList {
public:
    void addZone(std::int32_t zone) { indexOf(zone); }
    void add(std::int32_t origin, std::int32_t destination, float value, std::size_t line);

    /// The zone numbers that occur, ascending.
    std::vector<std::int32_t> zones() const;
    /// The table of the given zones. Throws FormatError for an OD pair that was added twice, and for
    /// too many zones. REQUIRES: `zones` is ascending and holds every zone that occurs.
    TripTable table(std::vector<std::int32_t> zones) const;

private:
    // Zones by the order of their first appearance, until all are known.
    struct Cell {
        std::uint32_t origin;
        std::uint32_t destination;
        float value;
        std::uint32_t line;
    };

    std::uint32_t indexOf(std::int32_t zone);
    [[noreturn]] void refuseSecond(Cell const& second) const;

    std::unordered_map<std::int32_t, std::uint32_t> indices_;
    std::vector<std::int32_t> numbers_;
    std::vector<Cell> cells_;
};

/// Throws FormatError when a table of so many zones exceeds the limit, or takes more memory than is available.
void requireFit(std::size_t zones);

}
