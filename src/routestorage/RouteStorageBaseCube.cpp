#include <cubes/routestorage/RouteStorageBaseCube.h>

#include "routestorage/RouteKind.h"
#include "routestorage/RouteNames.h"

using cubes::routestorage::kindOf;

namespace {

constexpr RkMatrixKind matrixKind = mkSelectedLink;

}

char const* const RouteStorageBaseCube::Ext = "FDB";

RouteStorageBaseCube::RouteStorageBaseCube(TRkGlobalSettings* settings, char const* directory, RkCubeTypes cubeType)
    : TRkVarCubes(settings, directory, Ext, cubeType, MatrixType, matrixKind, true) {}

RouteStorageBaseCube::RouteStorageBaseCube(RouteStorageBaseCube const&) = default;
RouteStorageBaseCube& RouteStorageBaseCube::operator=(RouteStorageBaseCube const&) = default;
RouteStorageBaseCube::~RouteStorageBaseCube() = default;

char const* RouteStorageBaseCube::Name() const {
    return "routestoragecube";
}

bool RouteStorageBaseCube::Set(short, short, short, short, short, short, TRkMatrix const&, RkLockState, bool) {
    return false;
}

TRkMatrix* RouteStorageBaseCube::Get(short, short, short, short, short, short, RkLockState, bool) const {
    return nullptr;
}

double RouteStorageBaseCube::Get(short, short, short, short, short, short, int, int, RkLockState, bool) const {
    return -1.0;
}

TRkMatrixHeader const* RouteStorageBaseCube::GetHeader(short, short, short, short, short, short, bool) const {
    return nullptr;
}

bool RouteStorageBaseCube::SaveMatrix(TRkMatrix const&, short, short, short, short, short, short, RkLockState, bool) {
    return false;
}

bool RouteStorageBaseCube::Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t,
    short u, short r, short i, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi,
    bool zeroBased) {
    if (!TRkVarCubes::Add(table, cubenr, p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased))
        return false;
    TRkFString::Directory(MatrixDirectory().str() + kindOf(cubeType_).directory).MkDir();
    return true;
}

TRkString RouteStorageBaseCube::createFilename(short p, short m, short t, short u, short r, short i) const {
    return cubes::routestorage::routeFileStem(kindOf(cubeType_).directory, {p, m, t, u, r, i});
}
