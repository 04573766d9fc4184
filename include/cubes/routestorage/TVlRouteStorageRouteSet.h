#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/ProvidedObjectT.h>
#include <cubes/routestorage/RouteStorageInterface.h>

namespace VL::Interface {

/// A route set stored in a file.
class CUBES_API TVlRouteStorageRouteSet final : public ProvidedObjectT<VelmoraRouteStorageRouteSetInterface> {
public:
    /// Nothing is read or written before open. Throws DllNotLoaded without a provider.
    explicit TVlRouteStorageRouteSet(char const* fileName);
    ~TVlRouteStorageRouteSet() override;

    /// Makes a further object, which the caller has to give up with one release; null when the
    /// provider does not make route sets.
    VelmoraRouteStorageRouteSetInterface* CreateVelmoraRouteStorageRouteSetInterface(char const* fileName);

    /// Opens the file: 1 when that worked, 0 when not, for which the last error tells the reason;
    /// -1 without an object. `mode`: see RouteOpenMode. A mode whose low byte is 1, without
    /// settings, is given settings made for the file. Throws DllNotLoaded when nobody can be
    /// asked for the last error.
    int open(long mode, SettingsInterface* settings);
};

}
