#pragma once

#include <cubes/varcubes/TRkVarCubes.h>

#include "varcubes/EntryRow.h"

#include <string>

namespace cubes::varcubes {

/// Places the file of one entry at another entry's path; false when that cannot be done.
using FileOperation = bool (*)(std::string const& source, std::string const& target);

bool copyEntryFile(std::string const& source, std::string const& target);
/// A file takes the target's place in one step; before a directory comes what was there is removed.
bool moveEntryFile(std::string const& source, std::string const& target);

/// One entry that is to become another: of the same cube or of two cubes.
struct EntryTransfer {
    TRkVarCubes const& source;
    TRkVarCubes& target;
    /// With the numbers of their cubes, as they were handed in.
    Key from;
    Key to;
    bool failIfExists;
    bool zeroBased;

    /// Whether both are the same entry, so that there is nothing to do.
    bool isDone() const;
    /// Adds the target's row and places its file. See TRkVarCubes::Copy for results and errors.
    bool run(FileOperation place) const;
    /// Deletes the row of the source.
    void deleteSource() const;
};

}
