#include "tool/formats/MatrixTable.h"

#include <algorithm>

namespace cubes::tool {

namespace {

constexpr int anyAccess = 0;

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
    auto const width = static_cast<std::size_t>(table.columns);
    table.cells.reserve(static_cast<std::size_t>(table.rows) * width);
    for (int row = 0; row < table.rows; ++row) {
        float const* const cells = matrix.RowAt(row, anyAccess);
        table.cells.insert(table.cells.end(), cells, cells + width);
    }
    return table;
}

}
