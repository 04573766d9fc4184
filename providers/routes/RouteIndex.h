#pragma once

#include "RouteTable.h"

#include <algorithm>
#include <compare>
#include <span>

namespace cubes::routes {

struct ZonePair {
    std::int32_t origin;
    std::int32_t destination;

    auto operator<=>(ZonePair const&) const = default;
};

/// Lists of route numbers by ascending keys: key k has routes[offsets[k]] up to, not including, routes[offsets[k + 1]],
/// in ascending order.
template <typename Key>
struct Lists {
    std::vector<Key> keys;
    std::vector<std::uint64_t> offsets = {0};
    std::vector<std::uint32_t> routes;

    /// The routes of all keys from the first position to the last, not including that.
    std::span<std::uint32_t const> between(std::size_t first, std::size_t last) const {
        auto const begin = static_cast<std::size_t>(offsets[first]);
        return {routes.data() + begin, static_cast<std::size_t>(offsets[last]) - begin};
    }
    /// The routes of all keys from the first that is not below the range to the last that is not above it.
    template <typename Below, typename NotAbove>
    std::span<std::uint32_t const> where(Below isBelow, NotAbove isNotAbove) const {
        auto const first = std::partition_point(keys.begin(), keys.end(), isBelow);
        auto const last = std::partition_point(first, keys.end(), isNotAbove);
        return between(static_cast<std::size_t>(first - keys.begin()), static_cast<std::size_t>(last - keys.begin()));
    }
};

/// The indexes by OD pair, by origin and by link.
class RouteIndex {
public:
    static RouteIndex of(RouteTable const& table);
    /// Throws std::runtime_error when the lists do not agree with the table's routes.
    RouteIndex(Lists<ZonePair> byPair, Lists<std::uint32_t> byLink, RouteTable const& table);

    std::span<std::uint32_t const> routesOfPair(ZonePair pair) const;
    std::span<std::uint32_t const> routesOfOrigin(std::int32_t origin) const;
    std::span<std::uint32_t const> routesOfLink(std::uint32_t link) const;

    Lists<ZonePair> const& byPair() const noexcept { return byPair_; }
    Lists<std::uint32_t> const& byLink() const noexcept { return byLink_; }

private:
    RouteIndex(Lists<ZonePair> byPair, Lists<std::uint32_t> byLink);

    Lists<ZonePair> byPair_;
    Lists<std::uint32_t> byLink_;
};

}
