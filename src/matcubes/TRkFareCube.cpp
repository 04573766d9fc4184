#include <cubes/matcubes/TRkFareCube.h>

#include "catalogue/EntryFile.h"

namespace {

constexpr short fares = -8;

}

char const* const TRkFareCube::Ext = ".frs";

TRkFareCube::TRkFareCube(TRkGlobalSettings* settings, bool flag) : TRkFareCube(settings, nullptr, flag) {}

TRkFareCube::TRkFareCube(TRkGlobalSettings* settings, char const* matrixDir, bool flag)
    : TRkMatCubes(settings, matrixDir, Ext, flag) {
    matrixType_ = mtFare;
}

TRkFareCube::TRkFareCube(TRkFareCube const&) = default;
TRkFareCube& TRkFareCube::operator=(TRkFareCube const&) = default;
TRkFareCube::~TRkFareCube() = default;

char const* TRkFareCube::Name() const {
    return "StopCube";
}

bool TRkFareCube::Add(short p, short m, short t, short u, bool zeroBased) const {
    auto table = Open();
    bool const added = TRkMatCubes::Add(table, fares, p, m, t, u, zeroBased);
    Close(table);
    return added;
}

bool TRkFareCube::Add(char const*, short p, short m, short t, short u, bool zeroBased) const {
    return Add(p, m, t, u, zeroBased);
}

bool TRkFareCube::Check(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::Check(fares, p, m, t, u, zeroBased);
}

bool TRkFareCube::Check(char const*, short p, short m, short t, short u, bool zeroBased) const {
    return Check(p, m, t, u, zeroBased);
}

bool TRkFareCube::Clear(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::Clear(fares, p, m, t, u, zeroBased);
}

bool TRkFareCube::Clear(char const*, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(p, m, t, u, zeroBased);
}

bool TRkFareCube::Delete(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::Delete(fares, p, m, t, u, zeroBased);
}

bool TRkFareCube::Delete(char const*, short p, short m, short t, short u, bool zeroBased) const {
    return Delete(p, m, t, u, zeroBased);
}

bool TRkFareCube::Remove(short p, short m, short t, short u, bool zeroBased) const {
    return Clear(p, m, t, u, zeroBased);
}

bool TRkFareCube::Remove(char const*, short p, short m, short t, short u, bool zeroBased) const {
    return Clear(p, m, t, u, zeroBased);
}

TRkString TRkFareCube::FileName(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::FileName(fares, p, m, t, u, zeroBased);
}

TRkString TRkFareCube::FileName(char const*, short p, short m, short t, short u, bool zeroBased) const {
    return FileName(p, m, t, u, zeroBased);
}

TRkMatrixHeader const* TRkFareCube::GetHeader(short p, short m, short t, short u, bool zeroBased) const {
    return cubes::catalogue::readHeader(FileName(p, m, t, u, zeroBased));
}

TRkMatrix* TRkFareCube::Get(short p, short m, short t, short u, RkLockState lock, bool zeroBased) const {
    return TRkMatCubes::Get(fares, p, m, t, u, lock, zeroBased);
}

TRkMatrix* TRkFareCube::Get(char const*, short p, short m, short t, short u, RkLockState lock, bool zeroBased) const {
    return Get(p, m, t, u, lock, zeroBased);
}

double TRkFareCube::Get(short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const {
    return TRkMatCubes::Get(fares, p, m, t, u, i, j, lock, zeroBased);
}

double TRkFareCube::Get(
    char const*, short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const {
    return Get(p, m, t, u, i, j, lock, zeroBased);
}

bool TRkFareCube::Set(short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock, bool zeroBased) {
    return TRkMatCubes::Set(fares, p, m, t, u, matrix, lock, zeroBased);
}

bool TRkFareCube::Set(
    char const*, short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock, bool zeroBased) {
    return Set(p, m, t, u, matrix, lock, zeroBased);
}

bool TRkFareCube::Copy(short p, short m, short t, short u, short toP, short toM, short toT, short toU,
    bool failIfExists, bool zeroBased) const {
    return TRkMatCubes::Copy(fares, p, m, t, u, fares, toP, toM, toT, toU, failIfExists, zeroBased);
}

bool TRkFareCube::Copy(char const*, short p, short m, short t, short u, char const*, short toP, short toM, short toT,
    short toU, bool failIfExists, bool zeroBased) const {
    return Copy(p, m, t, u, toP, toM, toT, toU, failIfExists, zeroBased);
}

bool TRkFareCube::Move(short p, short m, short t, short u, short toP, short toM, short toT, short toU,
    bool failIfExists, bool zeroBased) const {
    return TRkMatCubes::Move(fares, p, m, t, u, fares, toP, toM, toT, toU, failIfExists, zeroBased);
}

bool TRkFareCube::Move(char const*, short p, short m, short t, short u, char const*, short toP, short toM, short toT,
    short toU, bool failIfExists, bool zeroBased) const {
    return Move(p, m, t, u, toP, toM, toT, toU, failIfExists, zeroBased);
}

bool TRkFareCube::Clear() const {
    return TRkMatCubes::Clear(fares);
}

bool TRkFareCube::Add() const {
    return false;
}

bool TRkFareCube::Check() const {
    return false;
}

bool TRkFareCube::Delete() const {
    return false;
}

bool TRkFareCube::Remove() const {
    return false;
}

bool TRkFareCube::Get(TRkAutoListT<TKey>& list) const {
    return GetOfCube(fares, list);
}
