#pragma once

#include "host/hdf5/Hdf5.h"
#include "host/matrix/FileHeader.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace cubes::matrix {

enum class Filters { none, deflate, shuffleAndDeflate };

/// How the elements of a table are cut: into chunks of whole rows.
struct ChunkLayout {
    int rows = 0;
    Filters filters = Filters::none;
};

/// Makes an OMX file with one table and lets HDF5 lay out its structure. Unfiltered elements get
/// their place in the file and are written there by the caller; filtered ones come as chunks.
class OmxWriter {
public:
    /// Makes or overwrites the file. Throws hdf5::Error.
    OmxWriter(std::string const& path, std::string const& table, FileHeader const& header, ChunkLayout layout);

    /// Where the chunk that begins with a row lies, or will lie once written. Unfiltered chunks only.
    std::uint64_t chunkOffset(int firstRow) const;
    /// Stores the filtered bytes of the chunk that begins with a row.
    void writeChunk(int firstRow, std::span<std::byte const> bytes);
    /// Where the zone numbers lie; 0 when there are none.
    std::uint64_t zonesOffset() const noexcept { return zonesOffset_; }
    /// Where the bytes kept for the index lie; 0 for filtered elements, which have none.
    std::uint64_t indexOffset() const noexcept { return indexOffset_; }
    /// Records the elements' checksum and closes the file.
    void finish(std::uint64_t checksum);

private:
    void writeIndexPlace();
    void createTable(std::string const& table, FileHeader const& header, ChunkLayout layout);
    void writeZones(std::vector<std::int32_t> const& zones);

    hdf5::Handle file_;
    hdf5::Handle table_;
    std::uint64_t zonesOffset_ = 0;
    std::uint64_t indexOffset_ = 0;
};

}
