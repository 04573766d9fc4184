#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/RouteStorageBaseCube.h>

/// The cube of route sets. Its entries' children are route data, see RouteStorageDataCube.
class CUBES_API RouteStorageCube : public RouteStorageBaseCube {
public:
    /// ctRouteSet.
    static RkCubeTypes const CubeType;
    /// mtMatrixCube.
    static RkMatrixType const MatrixType;
    /// "FDB".
    static char const* const Ext;

    /// Uses the working directory of the settings.
    explicit RouteStorageCube(TRkGlobalSettings* settings);
    /// `directory`: of the files; null or empty selects the settings' working directory.
    RouteStorageCube(TRkGlobalSettings* settings, char const* directory);
    RouteStorageCube(RouteStorageCube const&);
    RouteStorageCube& operator=(RouteStorageCube const&);
    ~RouteStorageCube() override;

    /// Fills the list with the entry's children in the cube of route data, except those in use.
    /// False, and an empty list, for an entry that is missing or in use.
    bool GetChilds(short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const override;

    /// "RouteStorage_Routes\1-2-3-1-1-1.", including the point before the extension.
    static TRkString MakeFilename(short p, short m, short t, short u, short r, short i);
    /// Parses such a name, with or without directory and extension; "/" is accepted for "\". False,
    /// and zeros, for a text that does not have six parts.
    static bool MakeFilename(char const* text, int& p, int& m, int& t, int& u, int& r, int& i);
};
