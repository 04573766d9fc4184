#pragma once

#include "RouteIndex.h"
#include "StoredObject.h"

namespace cubes::routes {

/// The routes and their index, which is built by the first search or writing after a change. docs/route-file.md
/// describes how they are stored.
class IndexedRoutes {
public:
    static constexpr FileKind kind = {"cubes routes", hdf5::IndexRecord::Holds::routes};
    /// Throws when the file's content is not valid.
    static IndexedRoutes read(hdf5::GuardedFile const& file, hdf5::IndexRecord const& record);
    void write(hid_t file) const;
    void describe(hdf5::IndexRecord& record) const;

    RouteTable const& table() const noexcept { return table_; }
    RouteIndex const& index() const;
    void add(VL::Interface::Route const& route);

private:
    RouteTable table_;
    mutable std::optional<RouteIndex> index_;
};

/// A route set in a file.
class RouteSet final : public StoredObject<VL::Interface::VelmoraRouteStorageRouteSetInterface, IndexedRoutes> {
public:
    using StoredObject::StoredObject;

    VL::Interface::RouteResult addRoute(VL::Interface::Route const& route) override;
    std::int64_t countRoutes() const override;
    std::int64_t countLinks() const override;
    VL::Interface::RouteResult getRoute(std::int64_t number, VL::Interface::Route* route) const override;
    VL::Interface::RouteResult findRoutesOfPair(
        std::int32_t origin, std::int32_t destination, VL::Interface::RouteNumbers* found) const override;
    VL::Interface::RouteResult findRoutesOfOrigin(
        std::int32_t origin, VL::Interface::RouteNumbers* found) const override;
    VL::Interface::RouteResult findRoutesOfLink(std::uint32_t link, VL::Interface::RouteNumbers* found) const override;

private:
    template <typename Find>
    VL::Interface::RouteResult finding(VL::Interface::RouteNumbers* found, Find find) const;
};

}
