#pragma once

#include "host/hdf5/IndexRecord.h"
#include "host/matrix/FileIndex.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace cubes::matrix {

/// All that a new matrix file holds.
struct MatrixContent {
    FileHeader header;
    /// Rows x columns, row by row.
    float const* elements = nullptr;
    std::string table = "matrix";
    hdf5::FileStamp stamp = {};
    hdf5::Provenance provenance = {};
};

/// Makes an OMX file with one table and lets HDF5 lay out its structure. Unfiltered elements get
/// their place in the file and are written there by the caller; filtered ones come as chunks.
class OmxWriter {
public:
    /// Makes or overwrites the file; writes all but elements and stamp. Throws hdf5::Error.
    OmxWriter(std::string const& path, MatrixContent const& content, ChunkLayout layout);

    /// Where the chunk that begins with a row lies, and for unfiltered chunks will lie once written; all 0 when it
    /// has no place.
    ChunkPlace chunkPlace(int firstRow) const;
    /// Stores the filtered bytes of the chunk that begins with a row.
    void writeChunk(int firstRow, std::span<std::byte const> bytes);
    /// Writes the table of chunks and returns its place.
    std::uint64_t writeChunkTable(std::vector<ChunkPlace> const& chunks);
    /// Where the zone numbers lie; 0 when there are none.
    std::uint64_t zonesOffset() const noexcept { return zonesOffset_; }
    /// Where the bytes kept for the index record lie.
    std::uint64_t recordOffset() const noexcept { return recordOffset_; }
    /// Writes the content id and closes the file.
    void finish(hdf5::Id128 const& content);

private:
    std::uint64_t writeBytes(char const* name, std::span<std::byte const> bytes);
    void createTable(std::string const& table, FileHeader const& header, ChunkLayout layout);
    void writeZones(std::vector<std::int32_t> const& zones);

    hdf5::Handle file_;
    hdf5::Handle table_;
    std::uint64_t zonesOffset_ = 0;
    std::uint64_t recordOffset_ = 0;
};

}
