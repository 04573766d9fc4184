#pragma once

#include "tool/formats/TripTable.h"
#include "tool/statistics/Statistics.h"

#include <cubes/matrix/TRkMatrix.h>

namespace cubes::tool {

/// A matrix in memory with the table's cells and zone numbers.
TRkMatrix matrixOf(TripTable const& table);
TripTable tableOf(TRkMatrix const& matrix);
Statistics statisticsOf(TRkMatrix const& matrix);
/// The number of cells that a matrix with these figures sums up.
std::int64_t cellsIn(Statistics const& figures);

}
