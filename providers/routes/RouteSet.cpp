#include "RouteSet.h"

namespace cubes::routes {

using namespace VL::Interface;

IndexedRoutes IndexedRoutes::read(hid_t file) {
    IndexedRoutes routes;
    routes.table_ = readRoutes(file);
    routes.index_ = readIndex(file, routes.table_);
    return routes;
}

void IndexedRoutes::write(hid_t file) {
    writeRoutes(file, table_, index());
}

RouteIndex const& IndexedRoutes::index() const {
    if (!index_) index_ = RouteIndex::of(table_);
    return *index_;
}

void IndexedRoutes::add(Route const& route) {
    table_.add(route);
    index_.reset();
}

RouteResult RouteSet::addRoute(Route const& route) {
    return answering("add a route to", [&] {
        changing().add(route);
        return rrDone;
    });
}

std::int64_t RouteSet::countRoutes() const {
    return counting([&] { return static_cast<std::int64_t>(content().table().size()); });
}

std::int64_t RouteSet::countLinks() const {
    return counting([&] { return static_cast<std::int64_t>(content().table().links.size()); });
}

RouteResult RouteSet::getRoute(std::int64_t number, Route* route) const {
    return answering("read a route of", [&] {
        RouteTable const& table = content().table();
        if (number < 0 || static_cast<std::uint64_t>(number) >= table.size()) return rrAbsent;
        *route = table.route(static_cast<std::size_t>(number));
        return rrDone;
    });
}

template <typename Find>
RouteResult RouteSet::finding(RouteNumbers* found, Find find) const {
    return answering("find routes in", [&] {
        std::span<std::uint32_t const> const routes = find(content().index());
        *found = {routes.data(), static_cast<std::int64_t>(routes.size())};
        return routes.empty() ? rrAbsent : rrDone;
    });
}

RouteResult RouteSet::findRoutesOfPair(std::int32_t origin, std::int32_t destination, RouteNumbers* found) const {
    return finding(found, [&](RouteIndex const& index) { return index.routesOfPair({origin, destination}); });
}

RouteResult RouteSet::findRoutesOfOrigin(std::int32_t origin, RouteNumbers* found) const {
    return finding(found, [&](RouteIndex const& index) { return index.routesOfOrigin(origin); });
}

RouteResult RouteSet::findRoutesOfLink(std::uint32_t link, RouteNumbers* found) const {
    return finding(found, [&](RouteIndex const& index) { return index.routesOfLink(link); });
}

}
