#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/RouteStorageCubeData.h>
#include <cubes/varcubes/TRkVarCubes.h>

class RouteStorageDataCube;

/// What the cubes of route sets and of route data have in common. Their entries are rows like those
/// of any result cube; their files are written and read by the route-storage provider, in a
/// sub-directory of the matrix directory, which the stored names hold.
///
/// The operations for matrices are switched off. Without a provider, storing and fetching throw
/// DllNotLoaded. Copy, Move and Clear work as in every result cube; a file keeps the key that was
/// stored with it.
class CUBES_API RouteStorageBaseCube : public TRkVarCubes {
public:
    ~RouteStorageBaseCube() override;

    /// "routestoragecube", for both kinds.
    char const* Name() const;

    using TRkVarCubes::Add;
    using TRkVarCubes::Get;

    /// Nothing is stored: false.
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
    /// Nothing is stored: false.
    bool SaveMatrix(TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock,
        bool zeroBased) override;

    /// Stores an entry, always true. An entry that exists is cleared first, and so is its file.
    ///
    /// Data with a storage (a RouteStorageCubeData): the storage is given the cube type and the
    /// one-based key, and its file is copied. When that file is not there, nor any longer because
    /// it was the entry's own, the entry stays without a file. Throws TRkMatrixException when the
    /// file cannot be copied; the entry stays without a file then too. The copy is flushed
    /// to disk together with its directory.
    ///
    /// Other data, null among them: the provider makes an empty file; when it fails, TLastError
    /// tells why. Without an entry table nothing is made.
    bool SetData(CubeDataInterface* data, short p, short m, short t, short u, short r, short i, short parentcubenr,
        short pp, short pm, short pt, short pu, short pr, short pi, bool zeroBased) override;

    /// A new RouteStorageCubeData with the one-based key, without parent, and with the storage of
    /// the entry's file, not yet opened; without a storage when the provider makes none. The caller
    /// owns one reference. Null for an entry that is missing, in use or without a file.
    RouteStorageCubeData* GetData(short p, short m, short t, short u, short r, short i, bool zeroBased) const override;

    /// The parent's parts and cube; -1 and 0 for a missing entry and one in use.
    void GetParentPMTURI(short p, short m, short t, short u, short r, short i, short& pp, short& pm, short& pt,
        short& pu, short& pr, short& pi) const override;
    short GetParentCubenr(short p, short m, short t, short u, short r, short i) const override;
    /// Change the one and leave the other. The numbers are stored as they are, -1 and 0 too. False
    /// for a missing entry.
    bool SetParentPMTURI(short p, short m, short t, short u, short r, short i, short pp, short pm, short pt, short pu,
        short pr, short pi) override;
    bool SetParentCubenr(short p, short m, short t, short u, short r, short i, long cubenr) override;

    /// Appends the entry's children among route data that nobody uses, as GetPmturis gives them,
    /// whether or not the entry is there. Entries of other cubes are deleted from the list, those
    /// that it held before too.
    bool GetChildsAll(short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const;
    /// Deletes those that GetChilds lists from the cube of route data.
    void DeleteChildren(RouteStorageDataCube& dataCube, short p, short m, short t, short u, short r, short i) const;

    /// As in every result cube; also makes the sub-directory when it is not there.
    bool Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, short r,
        short i, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi,
        bool zeroBased) override;

    /// MakeFilename of the kind.
    TRkString createFilename(short p, short m, short t, short u, short r, short i) const override;

protected:
    /// `directory`: null or empty takes the working directory of the settings.
    RouteStorageBaseCube(TRkGlobalSettings* settings, char const* directory, char const* extension,
        RkCubeTypes cubeType, RkMatrixType matrixType);
    RouteStorageBaseCube(RouteStorageBaseCube const&);
    RouteStorageBaseCube& operator=(RouteStorageBaseCube const&);

private:
    /// The entry's row; null for an entry that is missing or in use.
    std::unique_ptr<TKey> FreeEntry(short p, short m, short t, short u, short r, short i) const;
};
