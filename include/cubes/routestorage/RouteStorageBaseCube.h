#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/RouteStorageCubeData.h>
#include <cubes/varcubes/TRkVarCubes.h>

class RouteStorageDataCube;

/// The base of the cubes of route sets and of route data. Their entries are rows like those of any
/// result cube; the route-storage provider writes and reads their files, in a subdirectory of the
/// matrix directory that is part of the stored names.
///
/// The matrix operations are disabled. Without a provider, SetData and GetData throw DllNotLoaded.
/// Copy, Move and Clear work as in every result cube; a file keeps the key that was stored with it.
class CUBES_API RouteStorageBaseCube : public TRkVarCubes {
public:
    ~RouteStorageBaseCube() override;

    /// "routestoragecube", for both kinds.
    char const* Name() const;

    using TRkVarCubes::Add;
    using TRkVarCubes::Get;

    /// Stores nothing and returns false.
    bool Set(short p, short m, short t, short u, short r, short i, TRkMatrix const& matrix, RkLockState lock,
        bool zeroBased) override;
    /// Null.
    TRkMatrix* Get(
        short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) const override;
    /// -1.0.
    double Get(short p, short m, short t, short u, short r, short i, int row, int column, RkLockState lock,
        bool zeroBased) const override;
    /// Null.
    TRkMatrixHeader const* GetHeader(
        short p, short m, short t, short u, short r, short i, bool zeroBased) const override;
    /// Stores nothing and returns false.
    bool SaveMatrix(TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock,
        bool zeroBased) override;

    /// Stores an entry; always true. An existing entry is cleared first, together with its file: when the step after
    /// that fails, the old routes are lost. cubes::EntryStore::putFile replaces a file without that risk.
    ///
    /// For a RouteStorageCubeData with a storage: sets the storage's cube type and one-based key and
    /// copies its file. When that file does not exist, or was the entry's own and has just been
    /// cleared, the entry stays without a file. Throws TRkMatrixException when the
    /// file cannot be copied; the entry stays without a file then too. The copy is flushed
    /// to disk together with its directory.
    ///
    /// For other data and null, the provider creates an empty file; when it fails, TLastError
    /// reports why. Without an entry table nothing is created.
    bool SetData(CubeDataInterface* data, short p, short m, short t, short u, short r, short i, short parentcubenr,
        short pp, short pm, short pt, short pu, short pr, short pi, bool zeroBased) override;

    /// Returns a new record with the one-based key, without parent, and with the storage of the
    /// entry's file, not yet opened (null when the provider has none). The caller owns one reference.
    /// Null for an entry that is missing, in use or without a file.
    RouteStorageCubeData* GetData(short p, short m, short t, short u, short r, short i, bool zeroBased) const override;

    /// The parent's key parts and cube; -1 and 0 for an entry that is missing or in use.
    void GetParentPMTURI(short p, short m, short t, short u, short r, short i, short& pp, short& pm, short& pt,
        short& pu, short& pr, short& pi) const override;
    short GetParentCubenr(short p, short m, short t, short u, short r, short i) const override;
    /// Change the parent's key parts or its cube only. The numbers are stored unchanged, including -1
    /// and 0. False for a missing entry.
    bool SetParentPMTURI(short p, short m, short t, short u, short r, short i, short pp, short pm, short pt, short pu,
        short pr, short pi) override;
    bool SetParentCubenr(short p, short m, short t, short u, short r, short i, long cubenr) override;

    /// Appends the entry's children in the cube of route data, except those in use, whether or not
    /// the entry exists. Removes entries of other cubes from the list, including earlier ones.
    bool GetChildsAll(short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const;
    /// Deletes the children that GetChilds lists from the cube of route data.
    void DeleteChildren(RouteStorageDataCube& dataCube, short p, short m, short t, short u, short r, short i) const;

    /// As in every result cube; also creates the subdirectory when it is missing.
    bool Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, short r,
        short i, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi,
        bool zeroBased) override;

    /// MakeFilename of the kind.
    TRkString createFilename(short p, short m, short t, short u, short r, short i) const override;

protected:
    /// `directory`: null or empty selects the settings' working directory.
    RouteStorageBaseCube(TRkGlobalSettings* settings, char const* directory, char const* extension,
        RkCubeTypes cubeType, RkMatrixType matrixType);
    RouteStorageBaseCube(RouteStorageBaseCube const&);
    RouteStorageBaseCube& operator=(RouteStorageBaseCube const&);

private:
    /// The entry's row; null for an entry that is missing or in use.
    std::unique_ptr<TKey> FreeEntry(short p, short m, short t, short u, short r, short i) const;
};
