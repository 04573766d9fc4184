#pragma once

#include <cstdint>
#include <string>

#include <sys/types.h>

namespace cubes::test {

/// A disk of limited size that does not exist: the files below a directory count as its content. What replaces the
/// functions of the C library asks it before a file grows.
class PretendedDisk {
public:
    PretendedDisk(std::string directory, std::uintmax_t bytes);

    /// Whether a path, or an open file, is on the disk.
    bool holds(std::string const& path) const;
    bool holds(int file) const;
    /// Whether an open file may be written up to `end`. True for files on other disks.
    bool hasRoom(int file, off_t end) const;
    /// The same for bytes that are written at the file's position.
    bool hasRoomFor(int file, std::size_t count) const;
    std::uintmax_t room() const;

private:
    std::uintmax_t used() const;

    std::string directory_;
    std::uintmax_t bytes_;
};

}
