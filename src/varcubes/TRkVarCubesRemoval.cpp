#include <cubes/varcubes/TRkVarCubes.h>

#include "catalogue/EntryTable.h"
#include "catalogue/MissingTable.h"
#include "host/platform/Files.h"

namespace {

void removeEntry(Rktable::TRkTableProxy& table, TRkFString const& directory) {
    TRkFString const path(cubes::deleteRow(table, directory.str()));
    if (cubes::platform::isDirectory(path.str()))
        path.RmDir(true);
    else
        path.RmFile();
}

}

bool TRkVarCubes::Check(short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    auto table = Open();
    bool const found = LookUp(table, CubeNumber(), p, m, t, u, r, i, zeroBased);
    Close(table);
    return found;
}

bool TRkVarCubes::Clear(short p, short m, short t, short u, short r, short i, bool zeroBased) {
    auto table = Open();
    bool const found = LookUp(table, CubeNumber(), p, m, t, u, r, i, zeroBased);
    if (found) removeEntry(*table, MatrixDirectory());
    Close(table);
    return found;
}

bool TRkVarCubes::Delete(short p, short m, short t, short u, short r, short i, bool zeroBased) {
    return Clear(p, m, t, u, r, i, zeroBased);
}

bool TRkVarCubes::Remove(short p, short m, short t, short u, short r, short i, bool zeroBased) {
    return Clear(p, m, t, u, r, i, zeroBased);
}

bool TRkVarCubes::Clear() {
    auto table = Open();
    bool const cleared = table && cubes::falseWithoutTable([&] {
        while (table->Locate("cubenr", CubeNumber())) removeEntry(*table, MatrixDirectory());
        return true;
    });
    Close(table);
    return cleared;
}

bool TRkVarCubes::Delete() {
    return Clear();
}

bool TRkVarCubes::Remove() {
    return Clear();
}
