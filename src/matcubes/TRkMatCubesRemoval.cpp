#include <cubes/matcubes/TRkMatCubes.h>

#include "catalogue/EntryTable.h"
#include "catalogue/MissingTable.h"

namespace {

void removeEntry(Rktable::TRkTableProxy& table, TRkFString const& directory) {
    TRkFString(cubes::deleteRow(table, directory.str())).RmFile();
}

}

bool TRkMatCubes::Clear(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    auto table = Open();
    bool const found = LookUp(table, cubenr, p, m, t, u, zeroBased);
    if (found) removeEntry(*table, matrixDirectory_);
    Close(table);
    return found;
}

bool TRkMatCubes::Clear(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(CubeNameToNr(cubeName), p, m, t, u, zeroBased);
}

bool TRkMatCubes::Delete(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(cubenr, p, m, t, u, zeroBased);
}

bool TRkMatCubes::Delete(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(cubeName, p, m, t, u, zeroBased);
}

bool TRkMatCubes::Remove(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(cubenr, p, m, t, u, zeroBased);
}

bool TRkMatCubes::Remove(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(cubeName, p, m, t, u, zeroBased);
}

bool TRkMatCubes::Clear(short cubenr) const {
    auto table = Open();
    bool const cleared = table && cubes::falseWithoutTable([&] {
        while (table->Locate("cubenr", cubenr)) removeEntry(*table, matrixDirectory_);
        return true;
    });
    Close(table);
    return cleared;
}

bool TRkMatCubes::Clear(char const* cubeName) const {
    return Clear(CubeNameToNr(cubeName));
}

bool TRkMatCubes::Delete(short cubenr) const {
    return Clear(cubenr) && TRkBaseCubes::Clear(cubenr);
}

bool TRkMatCubes::Delete(char const* cubeName) const {
    return Clear(cubeName) && TRkBaseCubes::Clear(cubeName);
}

bool TRkMatCubes::Remove(short cubenr) const {
    return Delete(cubenr);
}

bool TRkMatCubes::Remove(char const* cubeName) const {
    return Delete(cubeName);
}
