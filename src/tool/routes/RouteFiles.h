#pragma once

#include "tool/routes/RouteData.h"
#include "tool/routes/RouteList.h"

#include <cubes/routestorage/RouteStorageWrappers.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

/// The files of routes and route data, through the route-storage provider. Everything throws Failure
/// with the provider's reason.
namespace cubes::tool {

/// The entry that a file belongs to; files tell it.
struct RouteKey {
    short cube = 0;
    std::array<short, 6> key{};
};

/// An open route set.
class RouteSetFile {
public:
    explicit RouteSetFile(std::string const& path);

    std::size_t size() const { return static_cast<std::size_t>(set().countRoutes()); }
    std::size_t linkCount() const { return static_cast<std::size_t>(set().countLinks()); }
    /// Its links hold as long as this object.
    RouteList::Route route(std::size_t number) const;
    /// By number.
    std::vector<std::size_t> ofPair(std::int32_t origin, std::int32_t destination) const;
    std::vector<std::size_t> overLink(std::uint32_t link) const;

private:
    using Set = VL::Interface::VelmoraRouteStorageRouteSetInterface;
    Set& set() const { return *file_.getInterface(); }

    VL::Interface::TVlRouteStorageRouteSet file_;
};

/// Makes the file, anew when it is there.
void writeRouteSet(std::string const& path, RouteKey const& key, RouteList const& routes);
void writeRouteData(std::string const& path, RouteKey const& key, std::vector<RouteValues> const& fields);
std::vector<RouteValues> readRouteData(std::string const& path);

}
