#pragma once

#include <cubes/matrix/RkLockState.h>
#include <cubes/text/TRkString.h>

#include <memory>
#include <string>

class TRkMatrix;
class TRkMatrixHeader;

namespace cubes {

/// One element of a matrix, which is released; -1.0 for null. The object itself stays: that is how
/// callers know it. Throws TRkMatrixException outside the matrix; then nothing stays.
double readElement(std::unique_ptr<TRkMatrix> matrix, int row, int column);

/// The header of a matrix file, see TRkMatrix::GetHeader; null for an empty path.
TRkMatrixHeader const* readHeader(TRkString const& file);

/// Copies a matrix file as it is, holding the target's lock where `lock` asks for writing. False
/// when the target is the source, through links too, cannot be written or is held by someone else;
/// then it is left alone.
bool copyMatrixFile(std::string const& source, std::string const& target, RkLockState lock);

/// Removes the target and moves the source to its place, holding the target's lock. False when the
/// source is missing or is the target, or the target is held by someone else, which leaves both
/// alone, or when the file cannot be moved.
bool moveMatrixFile(std::string const& source, std::string const& target);

}
