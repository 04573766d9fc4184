#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/ProvidedObjectT.h>
#include <cubes/routestorage/RouteStorageInterface.h>

namespace VL::Interface {

/// Route data stored in a file.
class CUBES_API TVlRouteStorageDataSet final : public ProvidedObjectT<VelmoraRouteStorageDataSetInterface> {
public:
    /// Nothing is read or written before open. Throws DllNotLoaded without a provider.
    explicit TVlRouteStorageDataSet(char const* fileName);
    ~TVlRouteStorageDataSet() override;

    /// Makes a further object, which the caller has to give up with one release; null when the
    /// provider does not make route data.
    VelmoraRouteStorageDataSetInterface* CreateVelmoraRouteStorageDataSetInterface(char const* fileName);

    /// As TVlRouteStorageRouteSet::open.
    int open(long mode, SettingsInterface* settings);
};

}
