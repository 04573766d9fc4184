#include "RouteSet.h"

#include "Numbers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace cubes::routes {

using namespace VL::Interface;

namespace {

// Links take two bytes each if all numbers fit.
void writeLinks(hid_t parent, std::vector<std::uint32_t> const& links, Shuffle shuffle) {
    constexpr std::uint32_t largest = std::numeric_limits<std::uint16_t>::max();
    bool const areSmall = std::ranges::all_of(links, [](std::uint32_t link) { return link <= largest; });
    if (!areSmall) {
        writeDataset(parent, "links", typeOf<std::uint32_t>(), links.data(), links.size(), Shuffle::yes);
        return;
    }
    std::vector<std::uint16_t> narrow(links.size());
    std::ranges::transform(links, narrow.begin(), [](std::uint32_t link) { return static_cast<std::uint16_t>(link); });
    writeDataset(parent, "links", typeOf<std::uint16_t>(), narrow.data(), narrow.size(), shuffle);
}

template <typename Key>
void writeLists(hid_t group, Lists<Key> const& lists) {
    writeNumbers(group, "offsets", lists.offsets);
    writeNumbers(group, "routes", lists.routes);
}

template <typename Key>
void readLists(hdf5::GuardedFile const& file, std::string const& group, Lists<Key>& lists) {
    lists.offsets = readNumbers<std::uint64_t>(file, group + "/offsets");
    lists.routes = readNumbers<std::uint32_t>(file, group + "/routes");
}

std::vector<std::int32_t> zones(std::vector<ZonePair> const& pairs, std::int32_t ZonePair::*which) {
    std::vector<std::int32_t> numbers(pairs.size());
    std::ranges::transform(pairs, numbers.begin(), which);
    return numbers;
}

std::vector<ZonePair> readPairs(hdf5::GuardedFile const& file) {
    auto const origins = readNumbers<std::int32_t>(file, "by_pair/origins");
    auto const destinations = readNumbers<std::int32_t>(file, "by_pair/destinations");
    if (origins.size() != destinations.size()) throw std::runtime_error("by_pair does not fit the routes");
    std::vector<ZonePair> pairs(origins.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {origins[i], destinations[i]};
    return pairs;
}

RouteTable readRoutes(hdf5::GuardedFile const& file) {
    RouteTable table;
    table.origins = readNumbers<std::int32_t>(file, "origins");
    table.destinations = readNumbers<std::int32_t>(file, "destinations");
    table.shares = readNumbers<float>(file, "shares");
    table.offsets = readNumbers<std::uint64_t>(file, "offsets");
    table.links = readNumbers<std::uint32_t>(file, "links");
    table.requireSound();
    return table;
}

RouteIndex readIndex(hdf5::GuardedFile const& file, RouteTable const& table) {
    Lists<ZonePair> byPair;
    byPair.keys = readPairs(file);
    readLists(file, "by_pair", byPair);

    Lists<std::uint32_t> byLink;
    byLink.keys = readNumbers<std::uint32_t>(file, "by_link/links");
    readLists(file, "by_link", byLink);
    return {std::move(byPair), std::move(byLink), table};
}

// The bytes of a route before its links: docs/route-file.md describes what the content id covers.
std::array<std::byte, 20> headOf(Route const& route) {
    std::array<std::byte, 20> bytes;
    auto const count = static_cast<std::uint64_t>(route.linkCount);
    std::memcpy(bytes.data(), &route.origin, 4);
    std::memcpy(bytes.data() + 4, &route.destination, 4);
    std::memcpy(bytes.data() + 8, &route.share, 4);
    std::memcpy(bytes.data() + 12, &count, 8);
    return bytes;
}

hdf5::Id128 contentId(RouteTable const& table) {
    hdf5::ContentHash hash;
    for (std::size_t number = 0; number < table.size(); ++number) {
        Route const route = table.route(number);
        hash.add(headOf(route));
        hash.add(std::as_bytes(std::span(route.links, static_cast<std::size_t>(route.linkCount))));
    }
    return hash.id();
}

}

IndexedRoutes IndexedRoutes::read(hdf5::GuardedFile const& file, hdf5::IndexRecord const&) {
    IndexedRoutes routes;
    routes.table_ = readRoutes(file);
    routes.index_ = readIndex(file, routes.table_);
    return routes;
}

void IndexedRoutes::write(hid_t file) const {
    RouteIndex const& index = this->index();
    writeNumbers(file, "origins", table_.origins);
    writeNumbers(file, "destinations", table_.destinations);
    writeNumbers(file, "shares", table_.shares);
    writeNumbers(file, "offsets", table_.offsets);
    writeLinks(file, table_.links, Shuffle::no);

    hdf5::Handle const byPair = hdf5::createGroup(file, "by_pair");
    writeNumbers(byPair.get(), "origins", zones(index.byPair().keys, &ZonePair::origin));
    writeNumbers(byPair.get(), "destinations", zones(index.byPair().keys, &ZonePair::destination));
    writeLists(byPair.get(), index.byPair());

    hdf5::Handle const byLink = hdf5::createGroup(file, "by_link");
    writeLinks(byLink.get(), index.byLink().keys, Shuffle::yes);
    writeLists(byLink.get(), index.byLink());
}

void IndexedRoutes::describe(hdf5::IndexRecord& record) const {
    record.content = contentId(table_);
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
