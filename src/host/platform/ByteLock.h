#pragma once

#include "host/platform/File.h"

#include <cstdint>
#include <optional>
#include <string>

namespace cubes::platform {

/// An exclusive lock on one byte of a file, held against every other holder in this and in other
/// processes, until it is destroyed or the process ends. The byte need not exist. Movable.
class ByteLock {
public:
    /// Nothing when someone else holds the byte. The file is made when it is missing. Throws
    /// std::system_error when the file can't be opened for writing or can't be locked.
    static std::optional<ByteLock> tryTake(std::string const& path, std::uint64_t position);

private:
    explicit ByteLock(File file) noexcept : file_(std::move(file)) {}

    // Closing the file gives the lock up.
    File file_;
};

}
