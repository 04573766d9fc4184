#include <cubes/varcubes/TRkVarCubes.h>

#include "catalogue/EntryTable.h"

using cubes::usageColumn;

bool TRkVarCubes::incUsage(short p, short m, short t, short u, short r, short i) {
    auto table = Open();
    bool const raised =
        cubes::countsUsers(table) && LookUp(table, CubeNumber(), p, m, t, u, r, i, false) && table->Raise(usageColumn);
    Close(table);
    return raised;
}

bool TRkVarCubes::decUsage(short p, short m, short t, short u, short r, short i) {
    auto table = Open();
    bool const lowered =
        cubes::countsUsers(table) && LookUp(table, CubeNumber(), p, m, t, u, r, i, false) && table->Lower(usageColumn);
    Close(table);
    return lowered;
}

bool TRkVarCubes::isCorrect(short p, short m, short t, short u, short r, short i) const {
    if (!Check(p, m, t, u, r, i, false)) return false;
    auto table = Open();
    bool const correct = LookUp(table, CubeNumber(), p, m, t, u, r, i, false) && cubes::isFree(*table);
    Close(table);
    return correct;
}
