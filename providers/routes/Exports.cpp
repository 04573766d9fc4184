/// The library's exports.

#include "DataSet.h"
#include "RouteSet.h"

#include <RouteProviderExport.h>

using namespace VL::Interface;

namespace {

/// Opening needs no settings.
class Settings final : public cubes::routes::Counted<SettingsInterface> {};

std::string required(char const* fileName) {
    if (!fileName) throw std::invalid_argument("it has no name");
    return fileName;
}

// The factories' objects, null when there is not enough memory.
template <typename Object, typename Interface>
Interface* made(char const* fileName) {
    Interface* const none = nullptr;
    std::string const noText;
    return cubes::routes::answer("create an object for a route file", noText, none,
        [&]() -> Interface* { return new Object(required(fileName).c_str()); });
}

}

extern "C" {

ROUTE_PROVIDER_API SettingsInterface* CreateSettingsInterface(char const* /*fileName*/) {
    return cubes::routes::answer("create", "settings", static_cast<SettingsInterface*>(nullptr),
        []() -> SettingsInterface* { return new Settings; });
}

ROUTE_PROVIDER_API VelmoraRouteStorageRouteSetInterface* CreateVelmoraRouteStorageRouteSetInterface(
    char const* fileName) {
    return made<cubes::routes::RouteSet, VelmoraRouteStorageRouteSetInterface>(fileName);
}

ROUTE_PROVIDER_API VelmoraRouteStorageDataSetInterface* CreateVelmoraRouteStorageDataSetInterface(
    char const* fileName) {
    return made<cubes::routes::DataSet, VelmoraRouteStorageDataSetInterface>(fileName);
}
}
