#pragma once

#include "host/matrix/FileHeader.h"
#include "host/platform/File.h"

#include <cstdint>
#include <string>

namespace cubes::matrix {

/// Writes a matrix uncompressed and in one piece into a new file: HDF5 lays out the structure and
/// tells where the elements go, we write them there. Throws hdf5::Error, std::system_error or
/// std::length_error.
void writePlain(platform::File& file, std::string const& table, FileHeader const& header, float const* elements);

/// The same with chunks of at most `limit` bytes.
void writePlainInChunks(platform::File& file, std::string const& table, FileHeader const& header, float const* elements,
    std::uint64_t limit);

}
