#pragma once

#include "host/matrix/OmxWriter.h"
#include "host/platform/File.h"

#include <cubes/matrix/MatrixStorage.h>

#include <cstdint>

namespace cubes::matrix {

/// Writes a matrix into a new, empty file, with its index record.
///
/// Plain: uncompressed and contiguous. HDF5 lays out the structure and allocates the elements; the library writes them.
/// Deflate: bands of rows, each a chunk that HDF5's standard filters read; chunks of zeros are not stored. A
/// selected-link matrix, which is mostly zeros, is always compressed.
/// Throws hdf5::Error, std::system_error, std::length_error or std::runtime_error.
void writeMatrixFile(platform::File& file, MatrixContent const& content, Storage storage);

/// Writes a plain file with chunks of at most `limit` bytes.
void writePlainInChunks(platform::File& file, MatrixContent const& content, std::uint64_t limit);

}
