#pragma once

#include <cubes/catalogue/TRkBaseCubes.h>

namespace cubes::test {

/// Sets the version that decides the form of new file names, and resets it at the end of the block.
class VersionGuard {
public:
    explicit VersionGuard(int version) : before_(TRkBaseCubes::Version) { TRkBaseCubes::Version = version; }
    ~VersionGuard() { TRkBaseCubes::Version = before_; }
    VersionGuard(VersionGuard const&) = delete;
    VersionGuard& operator=(VersionGuard const&) = delete;

private:
    int before_;
};

}
