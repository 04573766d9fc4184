#pragma once

#include "host/matrix/FileHeader.h"
#include "host/platform/TemporaryFile.h"

#include <cubes/matrix/TRkMatrixHeader.h>

#include <string>

namespace cubes::matrix {

/// Writes a complete matrix file under the rule of its directory and puts it in place; a
/// selected-link matrix, which is mostly zeros, is always compressed. Throws TRkMatrixException;
/// then the place is as it was before.
void writeMatrixFile(platform::TemporaryFile& temporary, std::string const& target, std::string const& table,
    FileHeader const& header, float const* elements);

/// The header of a matrix as its file keeps it.
FileHeader fileHeader(TRkMatrixHeader const& header);

}
