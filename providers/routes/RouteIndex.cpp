#include "RouteIndex.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>

namespace cubes::routes {

namespace {

ZonePair pairOf(RouteTable const& table, std::uint32_t route) {
    return {table.origins[route], table.destinations[route]};
}

// Appends a route to the list of a key that is the last one or comes after it.
template <typename Key>
void append(Lists<Key>& lists, Key key, std::uint32_t route) {
    if (lists.keys.empty() || lists.keys.back() != key) {
        lists.keys.push_back(key);
        lists.offsets.push_back(lists.routes.size());
    }
    lists.routes.push_back(route);
    lists.offsets.back() = lists.routes.size();
}

Lists<ZonePair> listsByPair(RouteTable const& table) {
    std::vector<std::uint32_t> routes(table.size());
    std::iota(routes.begin(), routes.end(), 0u);
    auto const pair = [&table](std::uint32_t route) { return pairOf(table, route); };
    std::ranges::stable_sort(routes, {}, pair);
    Lists<ZonePair> lists;
    for (std::uint32_t const route : routes) append(lists, pair(route), route);
    return lists;
}

Lists<std::uint32_t> listsByLink(RouteTable const& table) {
    // Link and route in one number, for speed.
    std::vector<std::uint64_t> uses;
    uses.reserve(table.links.size());
    for (std::size_t route = 0; route < table.size(); ++route)
        for (auto at = table.offsets[route]; at < table.offsets[route + 1]; ++at)
            uses.push_back(std::uint64_t{table.links[at]} << 32 | route);
    std::sort(uses.begin(), uses.end());
    uses.erase(std::unique(uses.begin(), uses.end()), uses.end());
    Lists<std::uint32_t> lists;
    lists.routes.reserve(uses.size());
    for (std::uint64_t const use : uses)
        append(lists, static_cast<std::uint32_t>(use >> 32), static_cast<std::uint32_t>(use));
    return lists;
}

template <typename Key>
bool listsRise(Lists<Key> const& lists) {
    if (std::ranges::adjacent_find(lists.keys, [](Key a, Key b) { return !(a < b); }) != lists.keys.end()) return false;
    for (std::size_t place = 0; place < lists.keys.size(); ++place) {
        auto const routes = lists.between(place, place + 1);
        if (routes.empty() || std::ranges::adjacent_find(routes, std::greater_equal<>()) != routes.end()) return false;
    }
    return true;
}

template <typename Key>
void requireSound(char const* name, Lists<Key> const& lists, RouteTable const& table) {
    requireOffsets(name, lists.offsets, lists.keys.size(), lists.routes.size());
    bool const known = std::ranges::all_of(lists.routes, [&](std::uint32_t route) { return route < table.size(); });
    if (!known || !listsRise(lists)) throw std::runtime_error(std::string(name) + " does not fit the routes");
}

bool namesThePairs(Lists<ZonePair> const& lists, RouteTable const& table) {
    if (lists.routes.size() != table.size()) return false;
    for (std::size_t place = 0; place < lists.keys.size(); ++place)
        for (std::uint32_t const route : lists.between(place, place + 1))
            if (pairOf(table, route) != lists.keys[place]) return false;
    return true;
}

// Each use of a link is the next one in the link's list, or that before it where a route uses a link again.
class LinkUses {
public:
    explicit LinkUses(Lists<std::uint32_t> const& lists) : lists_(lists), next_(lists.offsets) {}

    bool takes(std::uint32_t link, std::uint32_t route) {
        auto const key = std::ranges::lower_bound(lists_.keys, link);
        if (key == lists_.keys.end() || *key != link) return false;
        auto const place = static_cast<std::size_t>(key - lists_.keys.begin());
        auto& next = next_[place];
        if (next > lists_.offsets[place] && lists_.routes[next - 1] == route) return true;
        return next < lists_.offsets[place + 1] && lists_.routes[next++] == route;
    }
    bool isEveryRouteTaken() const { return std::equal(next_.begin(), next_.end() - 1, lists_.offsets.begin() + 1); }

private:
    Lists<std::uint32_t> const& lists_;
    // By key; the last one is not used.
    std::vector<std::uint64_t> next_;
};

bool namesTheLinks(Lists<std::uint32_t> const& lists, RouteTable const& table) {
    LinkUses uses(lists);
    for (std::uint32_t route = 0; route < table.size(); ++route)
        for (auto at = table.offsets[route]; at < table.offsets[route + 1]; ++at)
            if (!uses.takes(table.links[at], route)) return false;
    return uses.isEveryRouteTaken();
}

}

RouteIndex RouteIndex::of(RouteTable const& table) {
    return {listsByPair(table), listsByLink(table)};
}

RouteIndex::RouteIndex(Lists<ZonePair> byPair, Lists<std::uint32_t> byLink)
    : byPair_(std::move(byPair)), byLink_(std::move(byLink)) {}

RouteIndex::RouteIndex(Lists<ZonePair> byPair, Lists<std::uint32_t> byLink, RouteTable const& table)
    : RouteIndex(std::move(byPair), std::move(byLink)) {
    requireSound("by_pair", byPair_, table);
    requireSound("by_link", byLink_, table);
    if (!namesThePairs(byPair_, table)) throw std::runtime_error("by_pair does not fit the routes");
    if (!namesTheLinks(byLink_, table)) throw std::runtime_error("by_link does not fit the routes");
}

std::span<std::uint32_t const> RouteIndex::routesOfPair(ZonePair pair) const {
    return byPair_.where([pair](ZonePair key) { return key < pair; }, [pair](ZonePair key) { return key <= pair; });
}

std::span<std::uint32_t const> RouteIndex::routesOfOrigin(std::int32_t origin) const {
    return byPair_.where([origin](ZonePair key) { return key.origin < origin; },
        [origin](ZonePair key) { return key.origin <= origin; });
}

std::span<std::uint32_t const> RouteIndex::routesOfLink(std::uint32_t link) const {
    return byLink_.where(
        [link](std::uint32_t key) { return key < link; }, [link](std::uint32_t key) { return key <= link; });
}

}
