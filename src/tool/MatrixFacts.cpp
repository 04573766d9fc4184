#include "tool/MatrixFacts.h"

namespace cubes::tool {

Statistics statisticsOf(TRkMatrix const& matrix) {
    constexpr int anyAccess = 0;
    auto const width = static_cast<std::size_t>(matrix.Columns());
    return statisticsOf(matrix.Rows(), matrix.Columns(),
        [&](int row) { return std::span<float const>(matrix.RowAt(row, anyAccess), width); });
}

std::int64_t cellsIn(Statistics const& figures) {
    return std::int64_t{figures.rows} * figures.columns - figures.zeros;
}

Json zoneCount(TRkMatrix const& matrix) {
    return matrix.Rows() == matrix.Columns() ? Json(matrix.Rows()) : Json();
}

}
