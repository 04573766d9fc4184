#include <cubes/matcubes/TRkMatCube.h>

#include "catalogue/ProjectCall.h"
#include "matcubes/EntryTransfer.h"

char const* const TRkMatCube::Ext = ".odm";

TRkMatCube::TRkMatCube(TRkGlobalSettings* settings, char const* name, bool flag)
    : TRkMatCube(settings, nullptr, name, flag) {}

TRkMatCube::TRkMatCube(TRkGlobalSettings* settings, char const* matrixDir, char const* name, bool flag)
    : TRkMatCubes(settings, matrixDir, Ext, flag) {
    Name(name);
}

TRkMatCube::TRkMatCube(TRkMatCube const&) = default;
TRkMatCube& TRkMatCube::operator=(TRkMatCube const&) = default;
TRkMatCube::~TRkMatCube() = default;

char const* TRkMatCube::Name() const {
    return name_ ? name_->c_str() : "";
}

void TRkMatCube::Name(char const* name) {
    name_ = name ? std::optional<TRkString>(name) : std::nullopt;
}

// The name as operations by name take it. Null means that no cube is bound; the empty name is an ordinary name.
char const* TRkMatCube::bound() const {
    return name_ ? name_->c_str() : nullptr;
}

bool TRkMatCube::Add(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::Add(bound(), p, m, t, u, zeroBased);
}

bool TRkMatCube::Check(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::Check(bound(), p, m, t, u, zeroBased);
}

bool TRkMatCube::Clear(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::Clear(bound(), p, m, t, u, zeroBased);
}

bool TRkMatCube::Delete(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::Delete(bound(), p, m, t, u, zeroBased);
}

bool TRkMatCube::Remove(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::Remove(bound(), p, m, t, u, zeroBased);
}

TRkString TRkMatCube::FileName(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::FileName(bound(), p, m, t, u, zeroBased);
}

TRkMatrixHeader const* TRkMatCube::GetHeader(short p, short m, short t, short u, bool zeroBased) const {
    return TRkMatCubes::GetHeader(bound(), p, m, t, u, zeroBased);
}

TRkMatrix* TRkMatCube::Get(short p, short m, short t, short u, RkLockState lock, bool zeroBased) const {
    return TRkMatCubes::Get(bound(), p, m, t, u, lock, zeroBased);
}

double TRkMatCube::Get(short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const {
    return TRkMatCubes::Get(bound(), p, m, t, u, i, j, lock, zeroBased);
}

bool TRkMatCube::Set(short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock, bool zeroBased) {
    return TRkMatCubes::Set(bound(), p, m, t, u, matrix, lock, zeroBased);
}

bool TRkMatCube::Copy(short p, short m, short t, short u, short toP, short toM, short toT, short toU, bool failIfExists,
    bool zeroBased) const {
    cubes::catalogue::ProjectCall const call(settings_);
    short from = 0;
    short to = 0;
    // Source and target are the same cube deliberately: only an existing entry is a reason to refuse.
    if (!TRkBaseCubes::Copy(bound(), bound(), false, from, to)) return false;
    auto const code = cubes::matcubes::whenExisting(failIfExists, TRkCubesException::ecMatrixExists);
    return cubes::matcubes::EntryTransfer{*this, *this, {from, p, m, t, u}, {to, toP, toM, toT, toU}, code, zeroBased}
        .copy();
}

bool TRkMatCube::Add() const {
    return TRkMatCubes::Add(bound());
}

bool TRkMatCube::Check() const {
    return TRkMatCubes::Check(bound());
}

bool TRkMatCube::Clear() const {
    return TRkMatCubes::Clear(bound());
}

bool TRkMatCube::Delete() const {
    return TRkMatCubes::Delete(bound());
}

bool TRkMatCube::Remove() const {
    return TRkMatCubes::Remove(bound());
}

bool TRkMatCube::Get(TRkAutoListT<TKey>& list) const {
    cubes::catalogue::ProjectCall const call(settings_);
    if (!GetOfCube(CubeNameToNr(bound()), list)) return false;
    GetNames(TRkBaseCubes::Open(), list);
    return true;
}
