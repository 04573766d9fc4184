#include <cubes/matcubes/TRkMatCubes.h>

#include "catalogue/EntryTable.h"

using cubes::usageColumn;

bool TRkMatCubes::incUsage(short cubenr, short p, short m, short t, short u) {
    auto table = Open();
    bool const raised =
        cubes::countsUsers(table) && LookUp(table, cubenr, p, m, t, u, false) && table->Raise(usageColumn);
    Close(table);
    return raised;
}

bool TRkMatCubes::decUsage(short cubenr, short p, short m, short t, short u) {
    auto table = Open();
    bool const lowered =
        cubes::countsUsers(table) && LookUp(table, cubenr, p, m, t, u, false) && table->Lower(usageColumn);
    Close(table);
    return lowered;
}

bool TRkMatCubes::isCorrect(short cubenr, short p, short m, short t, short u) const {
    auto table = Open();
    bool const correct = LookUp(table, cubenr, p, m, t, u, false) && cubes::isFree(*table);
    Close(table);
    return correct;
}
