#pragma once

#include <cubes/database/TRkTableProxy.h>
#include <cubes/text/CountedPtr.h>
#include <cubes/text/TRkString.h>

#include <unordered_map>

namespace cubes {

/// The names of cubes in the register, each looked up once however many entries ask for it.
class CubeNames {
public:
    /// An empty pointer is a register without cubes.
    explicit CubeNames(CountedPtr<Rktable::TRkTableProxy> catalogue);

    /// Null for an unknown cube.
    TRkString const* find(short cubenr);
    /// Empty for an unknown cube.
    TRkString of(short cubenr);

private:
    struct Known {
        bool isThere = false;
        TRkString name;
    };
    Known read(short cubenr) const;

    CountedPtr<Rktable::TRkTableProxy> catalogue_;
    std::unordered_map<short, Known> known_;
};

}
