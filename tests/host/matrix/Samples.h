#pragma once

#include <cubes/matrix/TRkMatrix.h>

#include "support/TempDir.h"

#include <string>

namespace cubes::test {

/// A matrix in memory with the elements 1000 * row + column.
TRkMatrix numbered(int rows, int columns);
/// A dense matrix of made-up travel times, the same for the same dimensions.
TRkMatrix times(int rows, int columns);

/// An object for a new file.
TRkMatrix created(std::string const& file, int rows, int columns, int lock = 0, char const* name = "");
/// An object opened on a file.
TRkMatrix opened(std::string const& file, int lock = 0, int kind = 0, char const* name = "");
/// Saves a matrix as a file; returns whether it succeeded.
bool save(TRkMatrix const& matrix, std::string const& file, int lock = 0);

/// Flips the lowest bit of an element with h5py, which compresses its chunk again where it was compressed: the file
/// can be read, and nothing else in it says what it held.
void flipBit(std::string const& file, int row, int column);

/// The first difference between two matrices, bit by bit; empty when there is none.
std::string difference(TRkMatrix const& first, TRkMatrix const& second);

}
