#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/Metadata.h>
#include <cubes/routestorage/RouteStorageBaseCube.h>

/// The cube of route data: values that belong to the routes of a set, their parent in RouteStorageCube. Its entries
/// have no children: GetChilds empties the list and returns false.
class CUBES_API RouteStorageDataCube : public RouteStorageBaseCube {
public:
    /// ctRouteData.
    static RkCubeTypes const CubeType;
    /// mtMatrixCube.
    static RkMatrixType const MatrixType;
    /// "FDB".
    static char const* const Ext;

    /// Uses the working directory of the settings.
    explicit RouteStorageDataCube(TRkGlobalSettings* settings);
    /// `directory`: of the files; null or empty selects the settings' working directory.
    RouteStorageDataCube(TRkGlobalSettings* settings, char const* directory);
    RouteStorageDataCube(RouteStorageDataCube const&);
    RouteStorageDataCube& operator=(RouteStorageDataCube const&);
    ~RouteStorageDataCube() override;

    /// "RouteStorage_RouteData\1-2-3-1-1-1.", including the point before the extension.
    static TRkString MakeFilename(short p, short m, short t, short u, short r, short i);
    /// Parses such names and those of RouteStorageCube::MakeFilename.
    static bool MakeFilename(char const* text, int& p, int& m, int& t, int& u, int& r, int& i);

    /// Returns the fields of the entry's file by name and type, in file order; the caller owns one
    /// reference. Keys are one-based. Empty when the entry or its file is missing or the file cannot
    /// be read (open the result of GetData to learn why). The precision is always 0; the size is 1
    /// for bytes and 0 otherwise. Throws DllNotLoaded without a provider.
    Metadata::Vector<Metadata::Field*>* getFieldMetadata(short p, short m, short t, short u, short r, short i) const;
};
