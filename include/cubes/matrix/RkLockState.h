#pragma once

/// The lock under which a matrix file is opened or created. Any number may be cast to it and passes through unchanged;
/// the bit of value 2 requests an exclusive write lock.
enum RkLockState : int {
    lsNone = 0,
    lsRead = 1,
    lsWrite = 2,
    lsReadWrite = 3,
    /// Works in place, on the file that the matrix already has.
    lsInPlace = 4,
    /// Unchanged since it was opened.
    lsUnchanged = 8,
    lsChanged = 11,
};
