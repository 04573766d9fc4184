#pragma once

#include <cubes/Export.h>
#include <cubes/matcubes/TRkMatCubes.h>

#include <optional>

/// One cube of matrices, bound by its name: every operation works on this cube, and a key alone names an entry. The
/// operations by name in TRkMatCubes document results and errors.
class CUBES_API TRkMatCube : public TRkMatCubes {
public:
    /// ".odm".
    static char const* const Ext;

    /// The cube need not exist; null binds none, and then no entry is found or added. `flag`: passed to new matrices.
    TRkMatCube(TRkGlobalSettings* settings, char const* name, bool flag);
    /// A null or empty directory is taken from the settings.
    TRkMatCube(TRkGlobalSettings* settings, char const* matrixDir, char const* name, bool flag);
    /// Deleted: a text is not a flag.
    TRkMatCube(TRkGlobalSettings*, char const*, char const*) = delete;
    TRkMatCube(TRkMatCube const&);
    TRkMatCube& operator=(TRkMatCube const&);
    ~TRkMatCube() override;

    /// The empty text when no cube is bound.
    char const* Name() const;
    /// Binds another cube; null binds none.
    void Name(char const* name);

    /// Registers the cube when it is new, and adds the entry.
    bool Add(short p, short m, short t, short u, bool zeroBased) const;
    bool Check(short p, short m, short t, short u, bool zeroBased) const;
    bool Clear(short p, short m, short t, short u, bool zeroBased) const;
    bool Delete(short p, short m, short t, short u, bool zeroBased) const;
    bool Remove(short p, short m, short t, short u, bool zeroBased) const;
    TRkString FileName(short p, short m, short t, short u, bool zeroBased) const;
    TRkMatrixHeader const* GetHeader(short p, short m, short t, short u, bool zeroBased) const;
    TRkMatrix* Get(short p, short m, short t, short u, RkLockState lock, bool zeroBased) const;
    double Get(short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const;
    /// Clears the entry when it exists, registers cube and entry, and writes the file. When writing then fails, the old
    /// matrix and the usage counter are lost, and the entry stays without a file; cubes::EntryStore::put replaces a
    /// matrix without that risk.
    bool Set(short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock, bool zeroBased);

    /// Copies within the cube. With `failIfExists` an existing target entry throws ecMatrixExists; source and target in
    /// the same cube are not an error here.
    bool Copy(short p, short m, short t, short u, short toP, short toM, short toT, short toU, bool failIfExists,
        bool zeroBased) const;

    /// Registers the cube.
    bool Add() const;
    bool Check() const;
    bool Clear() const;
    bool Delete() const;
    bool Remove() const;

    /// The entries of this cube, in key order, with its name.
    bool Get(TRkAutoListT<TKey>& list) const;

private:
    char const* bound() const;

    std::optional<TRkString> name_;
};
