// The forms differ in the check of the cubes that goes before, and in the error for a target that
// exists: callers know the forms by it.

#include <cubes/matcubes/TRkMatCubes.h>

#include "matcubes/EntryTransfer.h"

using cubes::matcubes::EntryTransfer;
using cubes::matcubes::whenExisting;

bool TRkMatCubes::Copy(short cubenr, short p, short m, short t, short u, short toCubenr, short toP, short toM,
    short toT, short toU, bool failIfExists, bool zeroBased) const {
    if (!TRkBaseCubes::Copy(failIfExists, cubenr, toCubenr)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecEntryExists);
    return EntryTransfer{*this, *this, {cubenr, p, m, t, u}, {toCubenr, toP, toM, toT, toU}, code, zeroBased}.copy();
}

bool TRkMatCubes::Copy(char const* cubeName, short p, short m, short t, short u, char const* toCubeName, short toP,
    short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    short from = 0;
    short to = 0;
    if (!TRkBaseCubes::Copy(cubeName, toCubeName, failIfExists, from, to)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecMatrixExists);
    return EntryTransfer{*this, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}.copy();
}

bool TRkMatCubes::Copy(TRkMatCubes const& other, short cubenr, short p, short m, short t, short u, short toCubenr,
    short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    if (!TRkBaseCubes::Copy(other, failIfExists, cubenr, toCubenr)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{other, *this, {cubenr, p, m, t, u}, {toCubenr, toP, toM, toT, toU}, code, zeroBased}.copy();
}

bool TRkMatCubes::Copy(TRkMatCubes const& other, char const* cubeName, short p, short m, short t, short u,
    char const* toCubeName, short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    short from = 0;
    short to = 0;
    if (!TRkBaseCubes::Copy(other, cubeName, toCubeName, failIfExists, from, to)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecEntryExists);
    return EntryTransfer{other, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}.copy();
}

bool TRkMatCubes::Move(short cubenr, short p, short m, short t, short u, short toCubenr, short toP, short toM,
    short toT, short toU, bool failIfExists, bool zeroBased) const {
    if (!TRkBaseCubes::Move(failIfExists, cubenr, toCubenr)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{*this, *this, {cubenr, p, m, t, u}, {toCubenr, toP, toM, toT, toU}, code, zeroBased}.move();
}

bool TRkMatCubes::Move(char const* cubeName, short p, short m, short t, short u, char const* toCubeName, short toP,
    short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    short from = 0;
    short to = 0;
    if (!TRkBaseCubes::Move(cubeName, toCubeName, failIfExists, from, to)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{*this, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}.move();
}

bool TRkMatCubes::Move(TRkMatCubes const& other, short cubenr, short p, short m, short t, short u, short toCubenr,
    short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    if (!TRkBaseCubes::Move(other, failIfExists, cubenr, toCubenr)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{other, *this, {cubenr, p, m, t, u}, {toCubenr, toP, toM, toT, toU}, code, zeroBased}.move();
}

bool TRkMatCubes::Move(TRkMatCubes const& other, char const* cubeName, short p, short m, short t, short u,
    char const* toCubeName, short toP, short toM, short toT, short toU, bool failIfExists, bool zeroBased) const {
    short from = 0;
    short to = 0;
    if (!TRkBaseCubes::Move(other, cubeName, toCubeName, failIfExists, from, to)) return false;
    auto const code = whenExisting(failIfExists, TRkCubesException::ecCubeExists);
    return EntryTransfer{other, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}.move();
}
