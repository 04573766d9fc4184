#pragma once

#include <cubes/Export.h>
#include <cubes/matrix/TRkBaseMatrix.h>

/// The body of a selected-link matrix: the demand of a select link analysis, which few OD pairs have. It is filled OD
/// pair by OD pair and flushed to its file, which is compressed. Opened again the file gives such a body; other readers
/// see an ordinary matrix. Created by TRkMatrix::selectedLink. In an opened file, as in every opened matrix, what is
/// written to rows stays in the object: only what is added is flushed.
class CUBES_API TRkVLSelectedLinkMatrix : public virtual TRkBaseMatrix {
public:
    ~TRkVLSelectedLinkMatrix() override;

    /// Adds to the value of an OD pair, both positions zero-based. Throws TRkMatrixException outside the matrix.
    virtual void Add(int row, int column, float value) = 0;

    /// Writes the file when values were added since it was last written, or when it is missing; without a file name it
    /// does nothing. The file is replaced atomically. Throws TRkMatrixException when that fails; then the old file
    /// stays. The destructor flushes what is left, and cannot report a failure.
    virtual void Flush() const = 0;
};
