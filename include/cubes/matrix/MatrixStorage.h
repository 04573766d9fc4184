#pragma once

#include <cubes/Export.h>

#include <string>

namespace cubes {

/// How elements are stored in a matrix file.
enum class Storage {
    /// In one piece, uncompressed: read and written at the speed of the file system.
    plain,
    /// In compressed blocks: smaller, for archives and sparse matrices.
    deflate,
};

/// What a finished matrix file survives.
enum class Durability {
    /// The file is flushed to disk before it is renamed to its name: it survives a power failure.
    full,
    /// The file survives the end of the process, not a power failure.
    process,
};

/// How new matrix files of a directory are written.
struct MatrixStorage {
    Storage storage = Storage::plain;
    Durability durability = Durability::full;
};

/// Sets, for this process, how matrix files created in `directory` are written from now on.
/// Directories without a rule of their own use the defaults. Any thread may call this.
CUBES_API void setMatrixStorage(std::string const& directory, MatrixStorage const& rule);
/// The rule for files created in `directory`.
CUBES_API MatrixStorage matrixStorage(std::string const& directory);

}
