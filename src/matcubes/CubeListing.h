#pragma once

#include <cubes/matcubes/TRkMatCubes.h>

namespace cubes::matcubes {

/// Fills the list with the entries of one cube; names stay empty. False without an entry table.
bool listEntries(TRkMatCubes const& cubes, short cubenr, TRkAutoListT<TRkMatCubes::TKey>& list);

}
