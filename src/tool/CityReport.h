#pragma once

#include "tool/CityCubes.h"
#include "tool/Table.h"

namespace cubes::tool {

/// One line a purpose and mode with the trips of each period, one line a mode with the mean
/// distances and times.
Table overview(City const& city);
/// One line a matrix.
Table listed(std::vector<CityMatrix> const& matrices);

}
