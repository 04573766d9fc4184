#pragma once

#include <cubes/Export.h>

#include <cstdint>

namespace cubes {

/// The limit where none is set: matrices of 40,000 x 40,000 elements take 6.4 GB.
inline constexpr int defaultMostZones = 40'000;

/// The zones of the largest matrix that is made or read into memory: a matrix may have this number squared of elements,
/// whatever its shape. The number that was set for this process, else that of the environment variable
/// CUBES_MAX_ZONES, else defaultMostZones. Throws std::invalid_argument when the variable is not a number from 1 on.
/// Any thread may call this.
CUBES_API int mostZones();
/// Sets the limit for this process; 0 or less removes what was set. Any thread may call this.
CUBES_API void setMostZones(int zones);

/// Checks that `copies` matrices of that size may be made, before memory is allocated. Throws std::length_error when
/// one exceeds the limit, or when all need more memory than the system, or the container of this process, has
/// available. Memory below 64 MiB is not asked for.
CUBES_API void requireMatrixFits(std::uint64_t rows, std::uint64_t columns, int copies = 1);

}
