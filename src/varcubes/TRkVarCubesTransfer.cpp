#include <cubes/varcubes/TRkVarCubes.h>

#include "varcubes/EntryTransfer.h"

using cubes::varcubes::EntryTransfer;

namespace {

bool copied(EntryTransfer const& transfer) {
    return transfer.isDone() || transfer.run(cubes::varcubes::copyEntryFile);
}

bool moved(EntryTransfer const& transfer) {
    if (transfer.isDone()) return true;
    if (!transfer.run(cubes::varcubes::moveEntryFile)) return false;
    transfer.deleteSource();
    return true;
}

}

bool TRkVarCubes::Copy(short p, short m, short t, short u, short r, short i, short toP, short toM, short toT, short toU,
    short toR, short toI, bool failIfExists, bool zeroBased) {
    return copied({*this, *this, {CubeNumber(), p, m, t, u, r, i}, {CubeNumber(), toP, toM, toT, toU, toR, toI},
        failIfExists, zeroBased});
}

bool TRkVarCubes::Copy(TRkVarCubes const& other, short p, short m, short t, short u, short r, short i, short toP,
    short toM, short toT, short toU, short toR, short toI, bool failIfExists, bool zeroBased) {
    return copied({other, *this, {other.CubeNumber(), p, m, t, u, r, i}, {CubeNumber(), toP, toM, toT, toU, toR, toI},
        failIfExists, zeroBased});
}

bool TRkVarCubes::Move(short p, short m, short t, short u, short r, short i, short toP, short toM, short toT, short toU,
    short toR, short toI, bool failIfExists, bool zeroBased) {
    return moved({*this, *this, {CubeNumber(), p, m, t, u, r, i}, {CubeNumber(), toP, toM, toT, toU, toR, toI},
        failIfExists, zeroBased});
}

bool TRkVarCubes::Move(TRkVarCubes const& other, short p, short m, short t, short u, short r, short i, short toP,
    short toM, short toT, short toU, short toR, short toI, bool failIfExists, bool zeroBased) {
    return moved({other, *this, {other.CubeNumber(), p, m, t, u, r, i}, {CubeNumber(), toP, toM, toT, toU, toR, toI},
        failIfExists, zeroBased});
}
