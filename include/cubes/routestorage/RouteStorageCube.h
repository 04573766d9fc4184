#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/RouteStorageBaseCube.h>

/// The cube of route sets. The children of its entries are route data, see RouteStorageDataCube.
class CUBES_API RouteStorageCube : public RouteStorageBaseCube {
public:
    /// ctRouteSet.
    static RkCubeTypes const CubeType;
    /// mtMatrixCube.
    static RkMatrixType const MatrixType;
    /// "FDB".
    static char const* const Ext;

    /// Takes the working directory from the settings.
    explicit RouteStorageCube(TRkGlobalSettings* settings);
    /// `directory`: of the files; null or empty takes the working directory from the settings.
    RouteStorageCube(TRkGlobalSettings* settings, char const* directory);
    RouteStorageCube(RouteStorageCube const&);
    RouteStorageCube& operator=(RouteStorageCube const&);
    ~RouteStorageCube() override;

    /// Fills the list with the entry's children among route data that nobody uses. False, and an
    /// empty list, for an entry that is missing or in use.
    bool GetChilds(short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const override;

    /// "RouteStorage_Routes\1-2-3-1-1-1.", with the point before the extension.
    static TRkString MakeFilename(short p, short m, short t, short u, short r, short i);
    /// Reads such a name, with or without its directory and extension; either "/" or "\" may stand
    /// behind the directory. False, and zeros, for a text that has not six parts.
    static bool MakeFilename(char const* text, int& p, int& m, int& t, int& u, int& r, int& i);
};
