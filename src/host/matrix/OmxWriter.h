#pragma once

#include "host/hdf5/IndexRecord.h"
#include "host/hdf5/WrittenFile.h"
#include "host/matrix/FileIndex.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace cubes::matrix {

/// The content of a new matrix file.
struct MatrixContent {
    FileHeader header;
    /// Rows x columns, row by row.
    float const* elements = nullptr;
    std::string table = "matrix";
    hdf5::FileStamp stamp = {};
    hdf5::Provenance provenance = {};
};

/// Creates an OMX file with one table and lets HDF5 lay out its structure. For unfiltered elements HDF5 allocates the
/// space, and the caller writes them; filtered ones are passed as chunks.
class OmxWriter {
public:
    /// Writes everything but elements and stamp into an empty file, which must outlive this object. Throws hdf5::Error
    /// and, like all functions here, std::system_error for a failed write, at the latest in finish().
    OmxWriter(platform::File& file, MatrixContent const& content, ChunkLayout layout);

    /// The place of the chunk that begins with a row, for unfiltered chunks also before they are written; all 0 when it
    /// has no place.
    ChunkPlace chunkPlace(int firstRow) const;
    /// Stores the filtered bytes of the chunk that begins with a row.
    void writeChunk(int firstRow, std::span<std::byte const> bytes);
    /// Writes the table of chunks and returns its place.
    std::uint64_t writeChunkTable(std::vector<ChunkPlace> const& chunks);
    /// The offset of the zone numbers; 0 when there are none.
    std::uint64_t zonesOffset() const noexcept { return zonesOffset_; }
    /// The offset of the bytes reserved for the index record.
    std::uint64_t recordOffset() const noexcept { return recordOffset_; }
    /// Writes the content id and closes the file.
    void finish(hdf5::Id128 const& content);

private:
    void createTable(std::string const& table, FileHeader const& header, ChunkLayout layout);
    void writeZones(std::vector<std::int32_t> const& zones);

    hdf5::WrittenFile file_;
    hdf5::Handle table_;
    std::uint64_t zonesOffset_ = 0;
    std::uint64_t recordOffset_ = 0;
};

}
