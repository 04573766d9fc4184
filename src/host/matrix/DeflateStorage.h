#pragma once

#include "host/matrix/FileHeader.h"
#include "host/platform/File.h"

#include <string>

namespace cubes::matrix {

/// Writes a matrix compressed into a new file: bands of rows, each a chunk that the standard
/// filters read. Chunks of zeros are not stored. Throws hdf5::Error, std::system_error,
/// std::length_error or std::runtime_error.
void writeDeflate(platform::File& file, std::string const& table, FileHeader const& header, float const* elements);

}
