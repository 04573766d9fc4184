#pragma once

#include "host/matrix/FileHeader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace cubes::matrix {

/// Where the parts of a plain matrix file lie.
struct FilePlaces {
    std::uint64_t index = 0;
    std::uint64_t elements = 0;
    std::uint64_t zones = 0;
    std::uint64_t size = 0;
};

/// Where the structure ends in which nothing may change while the record holds.
std::uint64_t structureEnd(FilePlaces const& places);

/// The short way to the elements of a plain file. Letting HDF5 read its structure costs more than
/// reading the elements of many a matrix, so we keep what the structure says in one small record,
/// together with a checksum of the structure itself: as long as no one has changed the structure
/// since we wrote it, the record is as good. Otherwise it counts for nothing and HDF5 is asked.
struct FileIndex {
    static constexpr std::size_t bytes = 512;

    FileHeader header;
    FilePlaces places;
};

/// The record for a file with this structure (its bytes up to structureEnd, changed in the
/// process); nothing when a record can't describe it.
std::optional<std::array<std::byte, FileIndex::bytes>> encodeIndex(
    FileIndex const& index, std::span<std::byte> structure);

/// Reads the record of a file given as a whole; nothing when there is none or it does not hold.
std::optional<FileIndex> findIndex(std::span<std::byte const> file);

}
