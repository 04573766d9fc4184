#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/RouteStorageBaseCube.h>
#include <cubes/routestorage/metadata/Field.h>
#include <cubes/routestorage/metadata/Vector.h>

/// The cube of route data: values that belong to the routes of a set, their parent in
/// RouteStorageCube. Its entries have no children: GetChilds empties the list and gives false.
class CUBES_API RouteStorageDataCube : public RouteStorageBaseCube {
public:
    /// ctRouteData.
    static RkCubeTypes const CubeType;
    /// mtMatrixCube.
    static RkMatrixType const MatrixType;
    /// "FDB".
    static char const* const Ext;

    /// Takes the working directory from the settings.
    explicit RouteStorageDataCube(TRkGlobalSettings* settings);
    /// `directory`: of the files; null or empty takes the working directory from the settings.
    RouteStorageDataCube(TRkGlobalSettings* settings, char const* directory);
    RouteStorageDataCube(RouteStorageDataCube const&);
    RouteStorageDataCube& operator=(RouteStorageDataCube const&);
    ~RouteStorageDataCube() override;

    /// "RouteStorage_RouteData\1-2-3-1-1-1.", with the point before the extension.
    static TRkString MakeFilename(short p, short m, short t, short u, short r, short i);
    /// As RouteStorageCube::MakeFilename, whose names it reads too.
    static bool MakeFilename(char const* text, int& p, int& m, int& t, int& u, int& r, int& i);

    /// The fields of the entry's file by name and type, in their order. Keys are one-based. Empty
    /// for an entry or a file that is missing, and for a file that cannot be read: opening what
    /// GetData gives tells why. The precision is always 0; so is the size, except 1 for bytes.
    /// The caller owns one reference. Throws DllNotLoaded without a provider.
    Metadata::Vector<Metadata::Field*>* getFieldMetadata(short p, short m, short t, short u, short r, short i) const;
};
