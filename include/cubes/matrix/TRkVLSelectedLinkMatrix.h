#pragma once

#include <cubes/Export.h>
#include <cubes/matrix/TRkBaseMatrix.h>

/// The body of a selected-link matrix: the trips that pass chosen links, few of all pairs. It is
/// filled pair by pair and flushed to its file, which is compressed and, opened again, gives such
/// a body; any reader sees an ordinary matrix in it. Made by TRkMatrix::selectedLink. Opened again, what is
/// written into its rows stays with the object, as in every opened matrix: only what is added
/// reaches the file.
class CUBES_API TRkVLSelectedLinkMatrix : public virtual TRkBaseMatrix {
public:
    ~TRkVLSelectedLinkMatrix() override;

    /// Adds to the value of a pair, both zero-based. Throws TRkMatrixException outside the matrix.
    virtual void Add(int row, int column, float value) = 0;

    /// Brings the file up to date when values were added since it was written, or when it is not
    /// there; without a file name it does nothing. Written whole or not at all. Throws
    /// TRkMatrixException when that fails; then the old file stays. What is not flushed when the
    /// matrix is destroyed is flushed then, and a failure goes unnoticed.
    virtual void Flush() const = 0;
};
