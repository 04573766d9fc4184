#include "RouteFile.h"

#include "Hdf5Numbers.h"

#include <algorithm>
#include <limits>

namespace cubes::routes {

using hdf5::readNumbers;
using hdf5::writeNumbers;

namespace {

// Links take two bytes each where all fit.
void writeLinks(hid_t parent, std::vector<std::uint32_t> const& links, hdf5::Shuffle shuffle) {
    constexpr std::uint32_t largest = std::numeric_limits<std::uint16_t>::max();
    bool const areSmall = std::ranges::all_of(links, [](std::uint32_t link) { return link <= largest; });
    if (!areSmall) {
        hdf5::writeDataset(
            parent, "links", hdf5::typeOf<std::uint32_t>(), links.data(), links.size(), hdf5::Shuffle::yes);
        return;
    }
    std::vector<std::uint16_t> small(links.size());
    std::ranges::transform(links, small.begin(), [](std::uint32_t link) { return static_cast<std::uint16_t>(link); });
    hdf5::writeDataset(parent, "links", hdf5::typeOf<std::uint16_t>(), small.data(), small.size(), shuffle);
}

template <typename Key>
void writeLists(hid_t group, Lists<Key> const& lists) {
    writeNumbers(group, "offsets", lists.offsets);
    writeNumbers(group, "routes", lists.routes);
}

template <typename Key>
void readLists(hid_t group, Lists<Key>& lists) {
    lists.offsets = readNumbers<std::uint64_t>(group, "offsets");
    lists.routes = readNumbers<std::uint32_t>(group, "routes");
}

std::vector<std::int32_t> zones(std::vector<ZonePair> const& pairs, std::int32_t ZonePair::*which) {
    std::vector<std::int32_t> numbers(pairs.size());
    std::ranges::transform(pairs, numbers.begin(), which);
    return numbers;
}

std::vector<ZonePair> readPairs(hid_t group) {
    auto const origins = readNumbers<std::int32_t>(group, "origins");
    auto const destinations = readNumbers<std::int32_t>(group, "destinations");
    if (origins.size() != destinations.size()) throw std::runtime_error("by_pair does not fit the routes");
    std::vector<ZonePair> pairs(origins.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {origins[i], destinations[i]};
    return pairs;
}

}

void writeRoutes(hid_t file, RouteTable const& table, RouteIndex const& index) {
    writeNumbers(file, "origins", table.origins);
    writeNumbers(file, "destinations", table.destinations);
    writeNumbers(file, "shares", table.shares);
    writeNumbers(file, "offsets", table.offsets);
    writeLinks(file, table.links, hdf5::Shuffle::no);

    hdf5::Handle const byPair = hdf5::createGroup(file, "by_pair");
    writeNumbers(byPair.get(), "origins", zones(index.byPair().keys, &ZonePair::origin));
    writeNumbers(byPair.get(), "destinations", zones(index.byPair().keys, &ZonePair::destination));
    writeLists(byPair.get(), index.byPair());

    hdf5::Handle const byLink = hdf5::createGroup(file, "by_link");
    writeLinks(byLink.get(), index.byLink().keys, hdf5::Shuffle::yes);
    writeLists(byLink.get(), index.byLink());
}

RouteTable readRoutes(hid_t file) {
    RouteTable table;
    table.origins = readNumbers<std::int32_t>(file, "origins");
    table.destinations = readNumbers<std::int32_t>(file, "destinations");
    table.shares = readNumbers<float>(file, "shares");
    table.offsets = readNumbers<std::uint64_t>(file, "offsets");
    table.links = readNumbers<std::uint32_t>(file, "links");
    table.requireSound();
    return table;
}

RouteIndex readIndex(hid_t file, RouteTable const& table) {
    Lists<ZonePair> byPair;
    hdf5::Handle const pairGroup = hdf5::openGroup(file, "by_pair");
    byPair.keys = readPairs(pairGroup.get());
    readLists(pairGroup.get(), byPair);

    Lists<std::uint32_t> byLink;
    hdf5::Handle const linkGroup = hdf5::openGroup(file, "by_link");
    byLink.keys = readNumbers<std::uint32_t>(linkGroup.get(), "links");
    readLists(linkGroup.get(), byLink);
    return {std::move(byPair), std::move(byLink), table};
}

}
