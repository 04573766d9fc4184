#pragma once

#include <memory>

namespace cubes {

/// Gives up a reference of an object that counts its references.
struct ReferenceGiver {
    template <typename Counted>
    void operator()(Counted* object) const {
        object->release();
    }
};

/// Owns one reference of an object that counts its references, and gives it up at its end:
///
///     cubes::Reference<CubeDataInterface> const record(cube.GetData(1, 1, 1, 1, 1, 1, false));
template <typename Counted>
using Reference = std::unique_ptr<Counted, ReferenceGiver>;

}
