#pragma once

#include <cubes/Export.h>

/// The body of a matrix, which holds its elements. Recognise a derived body by dynamic_cast.
class CUBES_API TRkBaseMatrix {
public:
    TRkBaseMatrix() = default;
    TRkBaseMatrix(TRkBaseMatrix const&) = delete;
    TRkBaseMatrix& operator=(TRkBaseMatrix const&) = delete;
    virtual ~TRkBaseMatrix();

    /// The file of the elements; empty for a matrix in memory.
    virtual char const* FileName() const noexcept = 0;
};
