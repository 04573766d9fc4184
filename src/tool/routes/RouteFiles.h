#pragma once

#include "tool/formats/TripTable.h"

#include <cubes/routestorage/RouteStorageWrappers.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Routes and route data, and their files, which a route-storage provider reads and writes. Everything
/// that uses a file throws Failure with the provider's reason.
namespace cubes::tool {

/// Routes in memory, in the order of their numbers.
class RouteList {
public:
    struct Route {
        std::int32_t origin = 0;
        std::int32_t destination = 0;
        float share = 0;
        /// Link numbers in travel order.
        std::span<std::uint32_t const> links;
    };

    /// Begins a route without links.
    void begin(std::int32_t origin, std::int32_t destination, float share) {
        heads_.push_back({origin, destination, share, links_.size()});
    }
    /// Adds a link to the route begun last.
    void addLink(std::uint32_t link) { links_.push_back(link); }

    std::size_t size() const noexcept { return heads_.size(); }
    std::size_t linkCount() const noexcept { return links_.size(); }
    /// Its links are valid until the next change.
    Route operator[](std::size_t index) const {
        auto const& head = heads_[index];
        std::size_t const end = index + 1 < heads_.size() ? heads_[index + 1].firstLink : links_.size();
        return {
            head.origin, head.destination, head.share, std::span(links_).subspan(head.firstLink, end - head.firstLink)};
    }

private:
    struct Head {
        std::int32_t origin;
        std::int32_t destination;
        float share;
        std::size_t firstLink;
    };

    std::vector<Head> heads_;
    std::vector<std::uint32_t> links_;
};

/// A field of route data: one value for each route of a set, by its number from 0. A double holds
/// a value of any field type exactly.
struct RouteValues {
    std::string name;
    VL::Interface::RouteFieldType type = VL::Interface::rftDouble;
    std::vector<double> values;
};

/// The entry that a file belongs to, as recorded in the file.
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
    /// Its links are valid as long as this object.
    RouteList::Route route(std::size_t number) const;
    /// The numbers of the routes of an OD pair, and of those over a link.
    std::vector<std::size_t> ofPair(std::int32_t origin, std::int32_t destination) const;
    std::vector<std::size_t> overLink(std::uint32_t link) const;

private:
    using Set = VL::Interface::VelmoraRouteStorageRouteSetInterface;
    Set& set() const { return *file_.getInterface(); }

    VL::Interface::TVlRouteStorageRouteSet file_;
};

/// Write a file, replacing an old one.
void writeRouteSet(std::string const& path, RouteKey const& key, RouteList const& routes);
void writeRouteData(std::string const& path, RouteKey const& key, std::vector<RouteValues> const& fields);
/// Reads a file as a whole where the provider offers that, and so finds damage.
void verifyRouteSet(std::string const& path);
void verifyRouteData(std::string const& path);
/// The fields of a file of route data.
std::vector<RouteValues> readRouteData(std::string const& path);

/// Select link analysis: the trips of each OD pair times the shares of its routes over the link. Zones are
/// matched by number, or by position from 1 in a table without zone numbers. Throws Failure when the table
/// is not square or lacks the origin or destination of a route.
TripTable tripsOverLink(RouteSetFile const& routes, std::uint32_t link, TripTable const& trips);

}
