#pragma once

#include "tool/formats/TripTable.h"

#include <cubes/matrix/TRkMatrix.h>

namespace cubes::tool {

/// A matrix in memory with the table's cells and zone numbers.
TRkMatrix matrixOf(TripTable const& table);
/// The matrix's cells and zone numbers.
TripTable tableOf(TRkMatrix const& matrix);

}
