#pragma once

#include <cubes/matrix/RkMatrixType.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

class TRkGlobalSettings;

namespace cubes::tool {

class EntryFamily;

/// What every project has beside the cubes of its register: the fares, and the results by kind.
/// Their entries are written KIND/purpose/mode/time/user, those of results with /result/iteration.
struct Kind {
    /// What stands for the cube's name.
    char const* word;
    short number;
    /// Of its matrix files, with the point.
    char const* extension;
    RkMatrixType matrixType;
    /// Results have a result and an iteration in their keys, and parents.
    bool isResult;
    /// Files of routes instead of matrices.
    bool holdsRoutes;
    std::unique_ptr<EntryFamily> (*entriesOf)(TRkGlobalSettings* settings, Kind const& kind);
};

/// Every kind, in the order of the help.
std::span<Kind const> kinds();

/// Null for a word or number that is no kind's.
Kind const* findKind(std::string_view word);
Kind const* findKind(short number);

}
