#include <cubes/varcubes/TRkVarCubes.h>

#include "varcubes/EntryRow.h"

using cubes::varcubes::Key;

namespace {

int partOf(Key const& numbers, int index) {
    int const parts = static_cast<int>(numbers.size());
    if (index == -1) return parts;
    return index >= 0 && index < parts ? numbers[static_cast<std::size_t>(index)] : -1;
}

Key keyOf(TRkVarCubes::TKey const& entry) {
    return {entry.cubenr, entry.purpose, entry.mode, entry.time, entry.user, entry.result, entry.iteration};
}

Key parentOf(TRkVarCubes::TKey const& entry) {
    return {entry.parentcubenr, entry.parentpurpose, entry.parentmode, entry.parenttime, entry.parentuser,
        entry.parentresult, entry.parentiteration};
}

}

TRkVarCubes::TKey::TKey(short cube, short p, short m, short t, short u, short r, short i, short parentCube, short pp,
    short pm, short pt, short pu, short pr, short pi, bool carried)
    : flag(carried), cubenr(cube), mode(m), purpose(p), time(t), user(u), result(r), iteration(i),
      parentcubenr(parentCube), parentmode(pm), parentpurpose(pp), parenttime(pt), parentuser(pu), parentresult(pr),
      parentiteration(pi) {}

int TRkVarCubes::TKey::operator()(int index) const {
    return partOf(keyOf(*this), index);
}

int TRkVarCubes::TKey::operator[](int index) const {
    return partOf(parentOf(*this), index);
}

TRkString TRkVarCubes::TKey::AsString() const {
    TRkString text;
    for (short const number : keyOf(*this)) text += TRkString(number) + ",";
    return text + filename;
}

int TRkVarCubes::TKeySortCompare(TKey* first, TKey* second) {
    auto const a = keyOf(*first);
    auto const b = keyOf(*second);
    if (a < b) return -1;
    return b < a ? 1 : 0;
}
