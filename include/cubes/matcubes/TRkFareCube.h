#pragma once

#include <cubes/Export.h>
#include <cubes/matcubes/TRkMatCubes.h>

/// The cube of fares, number -8. It needs no row in the register. Operations that take the name of a cube ignore it;
/// the operations by number in TRkMatCubes document results and errors. Through a reference to TRkMatCubes, names and
/// numbers count: no function here is virtual.
class CUBES_API TRkFareCube : public TRkMatCubes {
public:
    /// ".frs".
    static char const* const Ext;

    /// `flag`: passed to new matrices.
    TRkFareCube(TRkGlobalSettings* settings, bool flag);
    /// A null or empty directory is taken from the settings.
    TRkFareCube(TRkGlobalSettings* settings, char const* matrixDir, bool flag);
    /// Deleted: a text is not a flag.
    TRkFareCube(TRkGlobalSettings*, char const*) = delete;
    TRkFareCube(TRkFareCube const&);
    TRkFareCube& operator=(TRkFareCube const&);
    ~TRkFareCube() override;

    /// "StopCube".
    char const* Name() const;

    /// Adds the entry; no cube is registered. False without an entry table.
    bool Add(short p, short m, short t, short u, bool zeroBased) const;
    bool Add(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    bool Check(short p, short m, short t, short u, bool zeroBased) const;
    bool Check(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    bool Clear(short p, short m, short t, short u, bool zeroBased) const;
    bool Clear(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    bool Delete(short p, short m, short t, short u, bool zeroBased) const;
    bool Delete(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    bool Remove(short p, short m, short t, short u, bool zeroBased) const;
    bool Remove(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    TRkString FileName(short p, short m, short t, short u, bool zeroBased) const;
    TRkString FileName(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const;
    TRkMatrixHeader const* GetHeader(short p, short m, short t, short u, bool zeroBased) const;
    TRkMatrix* Get(short p, short m, short t, short u, RkLockState lock, bool zeroBased) const;
    TRkMatrix* Get(char const* cubeName, short p, short m, short t, short u, RkLockState lock, bool zeroBased) const;
    double Get(short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const;
    double Get(
        char const* cubeName, short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const;
    /// Replaces the matrix of an entry that exists; row and usage counter are kept. When writing fails, the old matrix
    /// stays. False for a missing entry: Add it first.
    bool Set(short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock, bool zeroBased);
    bool Set(char const* cubeName, short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock,
        bool zeroBased);

    /// From fares to fares. With `failIfExists` an existing target entry throws ecEntryExists when
    /// it is copied, ecCubeExists when it is moved.
    bool Copy(short p, short m, short t, short u, short toP, short toM, short toT, short toU, bool failIfExists,
        bool zeroBased) const;
    bool Copy(char const* cubeName, short p, short m, short t, short u, char const* toCubeName, short toP, short toM,
        short toT, short toU, bool failIfExists, bool zeroBased) const;
    bool Move(short p, short m, short t, short u, short toP, short toM, short toT, short toU, bool failIfExists,
        bool zeroBased) const;
    bool Move(char const* cubeName, short p, short m, short t, short u, char const* toCubeName, short toP, short toM,
        short toT, short toU, bool failIfExists, bool zeroBased) const;

    /// Removes all fares with their files.
    bool Clear() const;
    /// The cube of fares is not registered: these do nothing and return false.
    bool Add() const;
    bool Check() const;
    bool Delete() const;
    bool Remove() const;

    /// All fares, in key order, without names.
    bool Get(TRkAutoListT<TKey>& list) const;
};
