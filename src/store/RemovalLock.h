#pragma once

#include "host/platform/File.h"

#include <optional>
#include <string>

namespace cubes::store {

/// Held while entries are removed whose rows are deleted before their files: until then the files are not stray.
/// Several may be held at once for a directory. Movable.
class RemovalLock {
public:
    /// `directory`: of the project's files. Without effect where nothing can be locked; never throws for that.
    explicit RemovalLock(std::string const& directory);

    /// Whether anybody holds one at the moment, in this process or in another.
    static bool isHeld(std::string const& directory) noexcept;

private:
    std::optional<platform::ByteLock> place_;
};

}
