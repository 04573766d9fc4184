#pragma once

#include "tool/Table.h"
#include "tool/statistics/Statistics.h"

#include <cubes/matrix/TRkMatrix.h>

#include <cstdint>

namespace cubes::tool {

Statistics statisticsOf(TRkMatrix const& matrix);
/// The number of cells that the sums of a matrix with these figures are made of.
std::int64_t cellsIn(Statistics const& figures);
/// The number of zones; null for a matrix that is not square.
Json zoneCount(TRkMatrix const& matrix);

}
