#include "routestorage/RouteKind.h"

#include <cubes/routestorage/TVlRouteStorageDataSet.h>
#include <cubes/routestorage/TVlRouteStorageRouteSet.h>

#include "routestorage/RouteNames.h"

using Key = cubes::catalogue::ResultKey;
using VL::Interface::TVlRouteStorageDataSet;
using VL::Interface::TVlRouteStorageRouteSet;

namespace cubes::routestorage {

namespace {

template <typename Wrapper>
void createFile(std::string const& file, Key const& key) {
    Wrapper wrapper(file.c_str());
    if (auto* const storage = wrapper.getInterface()) assign(*storage, key);
    wrapper.open(VL::Interface::romCreate, nullptr);
}

template <typename Wrapper>
void attachStorage(RouteStorageCubeData& record, std::string const& file, Key const& key) {
    Wrapper const wrapper(file.c_str());
    auto* const storage = wrapper.getInterface();
    if (!storage) return;
    assign(*storage, key);
    // The wrapper gives this one up. The record takes one of its own.
    storage->addRef();
    record.setRouteStorage(storage);
}

constexpr RouteKind routeSets = {
    routeSetDirectory, createFile<TVlRouteStorageRouteSet>, attachStorage<TVlRouteStorageRouteSet>};
constexpr RouteKind routeData = {
    routeDataDirectory, createFile<TVlRouteStorageDataSet>, attachStorage<TVlRouteStorageDataSet>};

}

RouteKind const& kindOf(RkCubeTypes cubeType) {
    return cubeType == ctRouteSet ? routeSets : routeData;
}

void assign(VL::Interface::RouteStorageInterface& storage, catalogue::ResultKey const& key) {
    storage.setCubeType(key[0]);
    storage.setKey(key[1], key[2], key[3], key[4], key[5], key[6]);
}

}
