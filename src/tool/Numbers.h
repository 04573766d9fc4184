#pragma once

#include <cstdint>

namespace cubes::tool {

/// A sum of cells as the shortest decimal that its cells justify. A cell is rounded by up to
/// 6e-8 of itself; in a sum of n cells these errors cancel out in part, which leaves about a
/// square root of n of it. More than 9 digits are never given. So 1260907.44043807 is the trips
/// 1260907.44, and what a cell of 1.1 adds up to is 1.1.
double trusted(double sum, std::int64_t cells);

/// A cell's value as the shortest decimal that stands for it: the float 0.1, not 0.10000000149.
double shortest(float cell);

}
