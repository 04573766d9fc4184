#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace cubes::tool {

/// Routes as they come from or go to a file, in the order of their numbers.
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
    /// Its links hold until the next change.
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

}
