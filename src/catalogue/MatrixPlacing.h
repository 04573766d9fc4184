#pragma once

#include <cubes/matrix/RkLockState.h>

#include <string>

/// Whole matrix files put at other paths. What fails is told by the result.
namespace cubes {

/// Copies a matrix file as it is, holding the target's lock where `lock` asks for writing. False
/// when the target is the source, through links too, cannot be written or is held by someone else;
/// then it is left alone.
bool copyMatrixFile(std::string const& source, std::string const& target, RkLockState lock);

/// Removes the target and moves the source to its place, holding the target's lock. False when the
/// source is missing or is the target, or the target is held by someone else, which leaves both
/// alone, or when the file cannot be moved.
bool moveMatrixFile(std::string const& source, std::string const& target);

}
