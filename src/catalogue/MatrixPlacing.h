#pragma once

#include <cubes/matrix/RkLockState.h>

#include <string>

/// Whole matrix files put in place of others, or where none is, in one step: the target is the old
/// file or the new one. They survive a power failure where the rule of the target's directory asks
/// for that. What fails is told by the result.
namespace cubes {

/// Copies a matrix file as it is, holding the target's lock where `lock` asks for writing. False
/// for what is no file, when the target is a directory or the source, through links too, cannot be
/// written or is held by someone else.
bool copyMatrixFile(std::string const& source, std::string const& target, RkLockState lock);

/// Moves a matrix file, holding the target's lock; to another file system it is copied and then
/// removed. False where copyMatrixFile is; then the source is kept, unless just the flush of the
/// new name failed.
bool moveMatrixFile(std::string const& source, std::string const& target);

}
