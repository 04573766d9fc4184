#pragma once

#include "host/hdf5/ReaderProtocol.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace cubes::reader {

/// Checks that the stored bytes of a chunk give exactly the elements that its shape needs: HDF5 itself believes the
/// size that is recorded, and reads beyond it.
class ChunkCheck {
public:
    /// `chunkBytes` is the size of a chunk's elements, `fileSize` that of the file.
    ChunkCheck(std::vector<hdf5::Filter> filters, std::uint64_t chunkBytes, std::uint64_t fileSize);

    /// Throws std::runtime_error for a chunk that is damaged, or stored with a filter besides shuffle, deflate and
    /// fletcher32, whose output cannot be checked. `read` returns its stored bytes, which only some filters require.
    void require(hdf5::ChunkPlace const& place, std::function<std::vector<std::byte>()> const& read);

private:
    void requireInflated(std::vector<std::byte> const& stored, std::size_t behind, std::uint64_t expected);

    std::vector<hdf5::Filter> filters_;
    std::uint64_t chunkBytes_;
    std::uint64_t fileSize_;
    std::vector<std::byte> inflated_;
};

}
