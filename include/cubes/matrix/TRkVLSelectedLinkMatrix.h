#pragma once

#include <cubes/Export.h>
#include <cubes/matrix/TRkBaseMatrix.h>

/// The body of a selected-link matrix: the demand of a select link analysis, which few OD pairs have. It is filled OD
/// pair by OD pair and flushed to its file, which is compressed. Opening that file again creates such a body; other
/// readers see an ordinary matrix. Created by TRkMatrix::selectedLink. In an opened file, as in every opened matrix,
/// changes to rows stay in the object: only added values are flushed.
class CUBES_API TRkVLSelectedLinkMatrix : public virtual TRkBaseMatrix {
public:
    ~TRkVLSelectedLinkMatrix() override;

    /// Adds to the value of an OD pair, both positions zero-based. Throws TRkMatrixException outside the matrix.
    virtual void Add(int row, int column, float value) = 0;

    /// Writes the file when values were added since it was last written, or when it is missing; without a file name it
    /// does nothing. The file is replaced atomically. Throws TRkMatrixException when that fails; the old file is kept
    /// then. The destructor flushes pending values, and cannot report a failure.
    virtual void Flush() const = 0;
};
