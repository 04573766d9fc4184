#pragma once

#include <cubes/text/TRkString.h>

#include <memory>

class TRkMatrix;
class TRkMatrixHeader;

namespace cubes {

/// One element of a matrix, which is released; -1.0 for null. The object itself stays: that is how
/// callers know it. Throws TRkMatrixException outside the matrix; then nothing stays.
double readElement(std::unique_ptr<TRkMatrix> matrix, int row, int column);

/// The header of a matrix file, see TRkMatrix::GetHeader; null for an empty path.
TRkMatrixHeader const* readHeader(TRkString const& file);

}
