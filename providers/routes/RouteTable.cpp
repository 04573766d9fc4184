#include "RouteTable.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

namespace cubes::routes {

using VL::Interface::Route;

namespace {

constexpr std::size_t mostRoutes = std::numeric_limits<std::uint32_t>::max();

void requireRoute(Route const& route) {
    if (route.linkCount < 0) throw std::invalid_argument("its number of links is negative");
    if (route.linkCount > 0 && !route.links) throw std::invalid_argument("its links are missing");
    if (!std::isfinite(route.share)) throw std::invalid_argument("its share is not a finite number");
}

}

Route RouteTable::route(std::size_t number) const {
    auto const begin = static_cast<std::size_t>(offsets[number]);
    auto const count = static_cast<std::int64_t>(offsets[number + 1] - offsets[number]);
    return {origins[number], destinations[number], shares[number], links.data() + begin, count};
}

void RouteTable::add(Route const& route) {
    requireRoute(route);
    auto const added = static_cast<std::uint64_t>(route.linkCount);
    if (size() == mostRoutes || added > links.max_size() - links.size()) throw std::length_error("the set is full");
    std::size_t const routes = size();
    std::size_t const linkCount = links.size();
    try {
        append(route);
    } catch (...) {
        cutTo(routes, linkCount);
        throw;
    }
}

// The links may be part of this table, which may be reallocated.
void RouteTable::append(Route const& route) {
    auto const count = static_cast<std::size_t>(route.linkCount);
    std::less_equal<> const isBefore;
    bool const isOwn = isBefore(links.data(), route.links) && isBefore(route.links, links.data() + links.size());
    std::vector<std::uint32_t> const copied(route.links, route.links + (isOwn ? count : 0));
    std::uint32_t const* const added = isOwn ? copied.data() : route.links;
    links.insert(links.end(), added, added + count);
    offsets.push_back(links.size());
    shares.push_back(route.share);
    destinations.push_back(route.destination);
    origins.push_back(route.origin);
}

void RouteTable::cutTo(std::size_t routes, std::size_t linkCount) noexcept {
    links.resize(linkCount);
    offsets.resize(routes + 1);
    shares.resize(routes);
    destinations.resize(routes);
    origins.resize(routes);
}

void RouteTable::requireSound() const {
    if (size() > mostRoutes) throw std::runtime_error("it has too many routes");
    if (destinations.size() != size()) throw std::runtime_error("destinations has another size than origins");
    if (shares.size() != size()) throw std::runtime_error("shares has another size than origins");
    if (!std::all_of(shares.begin(), shares.end(), [](float share) { return std::isfinite(share); }))
        throw std::runtime_error("a share is not a finite number");
    requireOffsets("offsets", offsets, size(), links.size());
}

void requireOffsets(char const* name, std::vector<std::uint64_t> const& offsets, std::size_t count, std::size_t end) {
    bool const rises = offsets.size() == count + 1 && offsets.front() == 0 && offsets.back() == end;
    if (!rises || !std::is_sorted(offsets.begin(), offsets.end()))
        throw std::runtime_error(std::string(name) + " does not fit what it divides");
}

}
