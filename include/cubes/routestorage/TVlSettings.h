#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/ProvidedObjectT.h>
#include <cubes/routestorage/RouteStorageInterface.h>

namespace VL::Interface {

/// Settings for opening a route file.
class CUBES_API TVlSettings final : public ProvidedObjectT<SettingsInterface> {
public:
    /// Throws DllNotLoaded without a provider.
    explicit TVlSettings(char const* fileName);
    ~TVlSettings() override;

    /// Makes further settings, which the caller has to give up with one release; null when the
    /// provider does not make any.
    SettingsInterface* CreateInterface(char const* fileName);
};

}
