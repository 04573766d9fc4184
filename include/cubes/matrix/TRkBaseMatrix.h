#pragma once

#include <cubes/Export.h>

/// The body of a matrix: where its elements live. Recognise a derived body by dynamic_cast.
class CUBES_API TRkBaseMatrix {
public:
    TRkBaseMatrix() = default;
    TRkBaseMatrix(TRkBaseMatrix const&) = delete;
    TRkBaseMatrix& operator=(TRkBaseMatrix const&) = delete;
    virtual ~TRkBaseMatrix();

    /// The file the elements live in; empty for a matrix in memory.
    virtual char const* FileName() const noexcept = 0;
};
