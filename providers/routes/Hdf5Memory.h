#pragma once

#include "Hdf5.h"

#include <cstddef>
#include <vector>

namespace cubes::routes::hdf5 {

/// A file that is made or changed in memory, so that HDF5 never meets a full disk. Neither copyable
/// nor movable.
class MemoryFile {
public:
    MemoryFile();
    /// With the bytes of an existing file.
    explicit MemoryFile(std::vector<std::byte> existing);
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;

    hid_t get() const noexcept { return file_.get(); }
    /// Closes the file and gives its bytes.
    std::vector<std::byte> finish();

private:
    // Lives longer than the file, which keeps its bytes here.
    std::vector<std::byte> bytes_;
    Handle file_;
};

}
