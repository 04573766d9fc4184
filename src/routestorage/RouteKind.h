#pragma once

#include <cubes/catalogue/RkCubeTypes.h>
#include <cubes/routestorage/RouteStorageCubeData.h>
#include <cubes/routestorage/RouteStorageInterface.h>

#include "catalogue/EntryTable.h"

#include <string>

namespace cubes::routestorage {

/// What tells the cubes of routes apart.
struct RouteKind {
    /// Below the matrix directory.
    char const* directory;
    /// Has the provider make an empty file for the entry.
    void (*createFile)(std::string const& file, catalogue::ResultKey const& key);
    /// Gives the record the storage of the entry's file; none when the provider makes none.
    void (*attachStorage)(RouteStorageCubeData& record, std::string const& file, catalogue::ResultKey const& key);
};

RouteKind const& kindOf(RkCubeTypes cubeType);

/// Tells the storage which entry it belongs to.
void assign(VL::Interface::RouteStorageInterface& storage, catalogue::ResultKey const& key);

}
