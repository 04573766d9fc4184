#pragma once

#include <cubes/routestorage/RouteStorageInterface.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace cubes::routes {

/// The routes of a set, column by column: route r has the links offsets[r] up to, not including,
/// offsets[r + 1].
struct RouteTable {
    std::vector<std::int32_t> origins;
    std::vector<std::int32_t> destinations;
    std::vector<float> shares;
    std::vector<std::uint64_t> offsets = {0};
    std::vector<std::uint32_t> links;

    std::size_t size() const noexcept { return origins.size(); }
    VL::Interface::Route route(std::size_t number) const;
    /// Throws std::invalid_argument for an invalid route. Whatever it throws, the table is unchanged.
    void add(VL::Interface::Route const& route);
    /// Throws std::runtime_error when the columns do not fit each other.
    void requireSound() const;

private:
    void append(VL::Interface::Route const& route);
    void cutTo(std::size_t routes, std::size_t linkCount) noexcept;
};

/// Throws std::runtime_error unless these are `count` + 1 ascending numbers from 0 to `end`.
void requireOffsets(char const* name, std::vector<std::uint64_t> const& offsets, std::size_t count, std::size_t end);

}
