#pragma once

#include <cubes/Export.h>

/// The root of the objects that the project's settings can hold under a key.
class CUBES_API TRkObject {
public:
    TRkObject() = default;
    TRkObject(TRkObject const&) = default;
    TRkObject& operator=(TRkObject const&) = default;
    virtual ~TRkObject();
};
