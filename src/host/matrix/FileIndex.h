#pragma once

#include "host/hdf5/IndexRecord.h"

#include <cubes/matrix/RkMatrixKind.h>
#include <cubes/matrix/RkMatrixType.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace cubes::matrix {

/// The description of a matrix in its file. Files of other programs have no type and kind.
struct FileHeader {
    int rows = 0;
    int columns = 0;
    std::optional<RkMatrixType> type = {};
    std::optional<RkMatrixKind> kind = {};
    /// In UTF-8.
    std::string name = {};
    std::vector<std::int32_t> zones = {};
    /// Whether it is a selected-link matrix. Only compressed files record this.
    bool selectedLink = false;
};

/// Whether a run of bytes lies in a file of that size.
bool isWithin(hdf5::Extent const& extent, std::uint64_t size);

/// Throws std::length_error when a dimension is below 1 or the elements exceed the address space.
std::size_t elementCount(std::uint64_t rows, std::uint64_t columns);

/// The content id of a matrix: over rows and columns, the elements row by row, and the zone numbers.
class MatrixHash {
public:
    explicit MatrixHash(FileHeader const& header);
    /// Adds the next elements.
    void add(std::span<std::byte const> elements) { hash_.add(elements); }
    /// The id, once all elements are added.
    hdf5::Id128 finish();

private:
    std::vector<std::int32_t> zones_;
    hdf5::ContentHash hash_;
};

hdf5::Id128 contentId(FileHeader const& header, float const* elements);

/// What a file records about its content, by which damage is detected. Nothing in a file of another program.
struct RecordedContent {
    /// Unknown in files of the first version.
    hdf5::Id128 id = {};
    /// XXH3 (64 bits) of the elements, in files of the first version.
    std::optional<std::uint64_t> checksum = {};
    /// Whether the id covers the zone numbers of the header.
    bool hasZones = true;

    bool isKnown() const noexcept { return id.isKnown() || checksum; }
    /// Whether a matrix is the recorded one; true when nothing is recorded.
    bool agreesWith(FileHeader const& header, float const* elements) const;
};

/// Why a matrix that differs from its recorded content is refused, and what to do. `subject`: the file, or its table.
std::string reasonOfDamage(std::string const& subject);

enum class Filters { none, deflate, shuffleAndDeflate };

/// How the elements of a table are divided: into chunks of whole rows.
struct ChunkLayout {
    int rows = 0;
    Filters filters = Filters::none;
};

using hdf5::ChunkPlace;

/// The places of the elements and zone numbers in a matrix file of the library.
struct FilePlaces {
    ChunkLayout layout;
    /// Unfiltered elements: one run of bytes, which may be longer than the elements.
    hdf5::Extent elements;
    /// Filtered elements: the table of chunks, and its content, one per band. A band of zeros is not stored.
    std::uint64_t chunkTable = 0;
    std::vector<ChunkPlace> chunks;
    /// 0 when there are none.
    std::uint64_t zones = 0;
};

/// The direct access to the elements. Letting HDF5 read its structure often takes longer than reading the elements, so
/// the index record holds the needed part of the structure with a checksum of it: while nobody has changed the
/// structure since the library wrote it, the record is valid. Otherwise it is ignored and HDF5 reads the structure.
struct FileIndex {
    FileHeader header;
    FilePlaces places;
    /// Nothing in files of the first version, where HDF5 has to read it.
    std::optional<hdf5::Id128> content = {};
};

/// Completes a record for a finished file, given as a whole. A file that the record cannot describe, because of a long
/// name, gets a record without places: its elements are read through HDF5.
hdf5::IndexRecord indexRecord(
    std::span<std::byte const> file, std::uint64_t recordOffset, FileIndex const& index, hdf5::IndexRecord record);

/// Reads the record of a file given as a whole; nothing when there is none, when it has no places or is not valid.
/// Every place is within the file.
std::optional<FileIndex> findIndex(std::span<std::byte const> file);

}
