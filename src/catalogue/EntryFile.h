#pragma once

#include <cubes/matrix/RkLockState.h>
#include <cubes/text/TRkString.h>

#include <memory>
#include <string>

class TRkMatrix;
class TRkMatrixHeader;

/// Files of entries as the cube objects handle them. A file replaces another atomically: the target is the old file or
/// the new one, and survives a power failure if the rule of its directory requires that.
namespace cubes::catalogue {

/// Copies a file byte by byte, holding the target's lock if `lock` requests writing. Throws when the source is not a
/// regular file, or the target is a directory or the source (also through links), cannot be written or is locked; the
/// target is then unchanged.
void copyFile(std::string const& source, std::string const& target, RkLockState lock);

/// The same; returns whether it succeeded.
bool copyMatrixFile(std::string const& source, std::string const& target, RkLockState lock);
/// Moves a file, holding the target's lock; to another file system it is copied and then removed. Returns whether it
/// succeeded; if not, the source is kept, unless only the flush of the new name failed.
bool moveMatrixFile(std::string const& source, std::string const& target);

/// Copy and move what a result's row names: a file as above, or a directory. A directory is copied only into an
/// existing one, and moved in place of whatever the target names. False for an empty path.
bool copyResult(std::string const& source, std::string const& target);
bool moveResult(std::string const& source, std::string const& target);
/// Removes a file, or a directory with its content. False when there is none, or when it or a part of it stays.
bool removeResult(std::string const& path);

/// One element of a matrix, -1.0 for null. The matrix object stays allocated, which callers rely on, but keeps nothing
/// of the file. Throws TRkMatrixException outside the matrix; then the object is deleted.
double readElement(std::unique_ptr<TRkMatrix> matrix, int row, int column);

/// The header of a matrix file, see TRkMatrix::GetHeader; null for an empty path.
TRkMatrixHeader const* readHeader(TRkString const& file);

}
