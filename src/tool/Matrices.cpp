#include "tool/Matrices.h"

#include <algorithm>

namespace cubes::tool {

namespace {

constexpr int anyAccess = 0;

std::span<float const> rowOf(TRkMatrix const& matrix, int row) {
    return {matrix.RowAt(row, anyAccess), static_cast<std::size_t>(matrix.Columns())};
}

}

TRkMatrix matrixOf(TripTable const& table) {
    auto matrix = TRkMatrix::inMemory(table.rows, table.columns);
    for (int row = 0; row < table.rows; ++row) std::ranges::copy(table.row(row), matrix.RowAt(row, anyAccess));
    matrix.SetZones(table.zones);
    return matrix;
}

TripTable tableOf(TRkMatrix const& matrix) {
    TripTable table;
    table.rows = matrix.Rows();
    table.columns = matrix.Columns();
    table.zones = matrix.Zones();
    table.cells.reserve(static_cast<std::size_t>(table.rows) * static_cast<std::size_t>(table.columns));
    for (int row = 0; row < table.rows; ++row) {
        auto const cells = rowOf(matrix, row);
        table.cells.insert(table.cells.end(), cells.begin(), cells.end());
    }
    return table;
}

Statistics statisticsOf(TRkMatrix const& matrix) {
    return statisticsOf(matrix.Rows(), matrix.Columns(), [&](int row) { return rowOf(matrix, row); });
}

std::int64_t cellsIn(Statistics const& figures) {
    return std::int64_t{figures.rows} * figures.columns - figures.zeros;
}

}
