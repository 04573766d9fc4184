#pragma once

#include <memory>

namespace cubes {

/// Releases a reference of a reference-counted object.
struct ReferenceReleaser {
    template <typename Counted>
    void operator()(Counted* object) const {
        object->release();
    }
};

/// Owns one reference of a reference-counted object and releases it at the end:
///
///     cubes::Reference<CubeDataInterface> const record(cube.GetData(1, 1, 1, 1, 1, 1, false));
template <typename Counted>
using Reference = std::unique_ptr<Counted, ReferenceReleaser>;

}
