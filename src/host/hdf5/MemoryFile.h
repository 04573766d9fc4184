#pragma once

#include "host/hdf5/Hdf5.h"

#include <cstddef>
#include <vector>

namespace cubes::hdf5 {

/// A new HDF5 file in memory, so that HDF5 never writes to a full disk: its bytes are written
/// afterwards as a whole. REQUIRES: within a Session, and one object at a time.
class MemoryFile {
public:
    MemoryFile();
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;

    hid_t get() const noexcept { return file_.get(); }
    /// Closes the file and returns its bytes.
    std::vector<std::byte> finish();

private:
    // Outlives the file, which stores its bytes here.
    std::vector<std::byte> bytes_;
    Handle file_;
};

}
