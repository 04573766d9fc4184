#include <cubes/routestorage/RouteStorageCube.h>
#include <cubes/routestorage/RouteStorageDataCube.h>

#include "routestorage/RouteNames.h"

using namespace cubes::routestorage;

RkCubeTypes const RouteStorageCube::CubeType = ctRouteSet;
RkMatrixType const RouteStorageCube::MatrixType = mtMatrixCube;
char const* const RouteStorageCube::Ext = "FDB";

RouteStorageCube::RouteStorageCube(TRkGlobalSettings* settings) : RouteStorageCube(settings, nullptr) {}

RouteStorageCube::RouteStorageCube(TRkGlobalSettings* settings, char const* directory)
    : RouteStorageBaseCube(settings, directory, Ext, CubeType, MatrixType) {}

RouteStorageCube::RouteStorageCube(RouteStorageCube const&) = default;
RouteStorageCube& RouteStorageCube::operator=(RouteStorageCube const&) = default;
RouteStorageCube::~RouteStorageCube() = default;

bool RouteStorageCube::GetChilds(short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const {
    list.Clear();
    return isCorrect(p, m, t, u, r, i) && GetChildsAll(p, m, t, u, r, i, list);
}

TRkString RouteStorageCube::MakeFilename(short p, short m, short t, short u, short r, short i) {
    return routeFileStem(routeSetDirectory, {p, m, t, u, r, i});
}

bool RouteStorageCube::MakeFilename(char const* text, int& p, int& m, int& t, int& u, int& r, int& i) {
    constexpr std::array directories = {routeSetDirectory};
    return readRouteFileName(text, directories, {&p, &m, &t, &u, &r, &i});
}

RkCubeTypes const RouteStorageDataCube::CubeType = ctRouteData;
RkMatrixType const RouteStorageDataCube::MatrixType = mtMatrixCube;
char const* const RouteStorageDataCube::Ext = "FDB";

RouteStorageDataCube::RouteStorageDataCube(TRkGlobalSettings* settings) : RouteStorageDataCube(settings, nullptr) {}

RouteStorageDataCube::RouteStorageDataCube(TRkGlobalSettings* settings, char const* directory)
    : RouteStorageBaseCube(settings, directory, Ext, CubeType, MatrixType) {}

RouteStorageDataCube::RouteStorageDataCube(RouteStorageDataCube const&) = default;
RouteStorageDataCube& RouteStorageDataCube::operator=(RouteStorageDataCube const&) = default;
RouteStorageDataCube::~RouteStorageDataCube() = default;

TRkString RouteStorageDataCube::MakeFilename(short p, short m, short t, short u, short r, short i) {
    return routeFileStem(routeDataDirectory, {p, m, t, u, r, i});
}

bool RouteStorageDataCube::MakeFilename(char const* text, int& p, int& m, int& t, int& u, int& r, int& i) {
    constexpr std::array directories = {routeSetDirectory, routeDataDirectory};
    return readRouteFileName(text, directories, {&p, &m, &t, &u, &r, &i});
}
