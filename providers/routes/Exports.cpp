/// The library's exports.

#include "DataSet.h"
#include "RouteSet.h"

#include <RouteProviderExport.h>

using namespace VL::Interface;

namespace {

/// Opening needs no settings: the object only stands for them.
class Settings final : public cubes::routes::Counted<SettingsInterface> {};

std::string required(char const* fileName) {
    if (!fileName) throw std::invalid_argument("it has no name");
    return fileName;
}

// The factories' objects, null where there is no memory for them.
template <typename Object, typename Interface>
Interface* made(char const* fileName) {
    Interface* const none = nullptr;
    std::string const noText;
    return cubes::routes::answer(
        "stand for a route file", noText, none, [&]() -> Interface* { return new Object(required(fileName).c_str()); });
}

}

extern "C" {

ROUTE_PROVIDER_API SettingsInterface* CreateSettingsInterface(char const* /*fileName*/) {
    return cubes::routes::answer("make", "settings", static_cast<SettingsInterface*>(nullptr),
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
