#pragma once

namespace cubes::tool {

/// A sum of cells, with the digits that it can be trusted in. A cell holds about 7 digits; the
/// errors of many cells cancel out in part, so that a sum is good for about 9. What would stand
/// behind them is noise: 1260907.44043807 is the trips 1260907.44.
double trusted(double sum);

/// A cell's value as the shortest decimal that stands for it: the float 0.1, not 0.10000000149.
double shortest(float cell);

}
