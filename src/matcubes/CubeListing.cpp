#include "matcubes/CubeListing.h"

#include <string>

namespace cubes::matcubes {

bool listEntries(TRkMatCubes const& cubes, short cubenr, TRkAutoListT<TRkMatCubes::TKey>& list) {
    auto table = cubes.Open();
    if (table) {
        table->SetFilterSQL("\"cubenr\"=" + std::to_string(cubenr));
        table->First();
    }
    bool const read = cubes.Get(table, list);
    cubes.Close(table);
    return read;
}

}
