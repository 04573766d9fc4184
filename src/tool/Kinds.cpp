#include "tool/Kinds.h"

#include "tool/EntryFamily.h"

#include <cubes/matcubes/TRkFareCube.h>
#include <cubes/routestorage/RouteStorageCube.h>
#include <cubes/routestorage/RouteStorageDataCube.h>
#include <cubes/varcubes/TRkCordonCube.h>
#include <cubes/varcubes/TRkPathCube.h>
#include <cubes/varcubes/TRkScreenCube.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>
#include <cubes/varcubes/TRkSkimCube.h>
#include <cubes/varcubes/TRkStop2StopCube.h>
#include <cubes/varcubes/TRkTransitCube.h>

namespace cubes::tool {

namespace {

constexpr short fareNumber = -8;

template <typename Cube>
Kind resultKind(char const* word) {
    return {word, static_cast<short>(Cube::CubeType), Cube::Ext, Cube::MatrixType, true, false,
        [](TRkGlobalSettings* settings, Kind const& kind) {
            return resultEntries(std::make_unique<Cube>(settings, false), kind);
        }};
}

template <typename Cube>
Kind routeKind(char const* word) {
    return {word, static_cast<short>(Cube::CubeType), Cube::Ext, Cube::MatrixType, true, true,
        [](TRkGlobalSettings* settings, Kind const& kind) {
            return resultEntries(std::make_unique<Cube>(settings), kind);
        }};
}

template <typename Property>
Kind const* findWith(Property const& isWanted) {
    for (auto const& kind : kinds())
        if (isWanted(kind)) return &kind;
    return nullptr;
}

}

std::span<Kind const> kinds() {
    static Kind const all[] = {resultKind<TRkSkimCube>("skim"), resultKind<TRkSelectedLinkCube>("selectedlink"),
        resultKind<TRkCordonCube>("cordon"), resultKind<TRkScreenCube>("screen"), resultKind<TRkTransitCube>("transit"),
        resultKind<TRkPathCube>("path"), resultKind<TRkStop2StopCube>("stop2stop"),
        routeKind<RouteStorageCube>("routes"), routeKind<RouteStorageDataCube>("routedata"),
        {"fare", fareNumber, TRkFareCube::Ext, mtFare, false, false, fareEntries}};
    return all;
}

Kind const* findKind(std::string_view word) {
    return findWith([&](Kind const& kind) { return kind.word == word; });
}

Kind const* findKind(short number) {
    return findWith([&](Kind const& kind) { return kind.number == number; });
}

}
