#pragma once

#include "host/matrix/StagedFile.h"

#include <cubes/store/EntryCheck.h>

#include <optional>
#include <string>

namespace cubes::store {

/// What a check needs to know about the file of an entry.
struct FileFacts {
    /// What is wrong with the file, and why.
    std::optional<Problem> problem = {};
    std::string detail = {};
    /// 0 for files of routes and for files that cannot be read.
    int rows = 0;
    int columns = 0;
    /// As the file records it.
    std::optional<matrix::FileStamp> stamp = {};
};

/// Examines an existing file. `deep`: also reads a matrix and compares it with its content id. Any number of threads
/// may call it.
FileFacts inspectFile(std::string const& path, bool holdsRoutes, bool deep);

/// Whether a temporary file may hold a whole matrix, or routes in whatever form, that are not stored elsewhere: unless
/// it can be read and shows that it was not written to its end, or it was replaced while it was being read.
bool mayBeComplete(std::string const& path);

}
