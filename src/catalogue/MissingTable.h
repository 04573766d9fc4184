#pragma once

#include <cubes/database/TRkDatabaseException.h>

namespace cubes {

/// The result of `lookUp`, false when its table is gone: a table that others dropped since it was
/// last used is as good as one that was never there.
template <typename LookUp>
bool falseWithoutTable(LookUp const& lookUp) {
    try {
        return lookUp();
    } catch (TRkDatabaseException const& error) {
        if (!error.IsMissingTable()) throw;
        return false;
    }
}

}
