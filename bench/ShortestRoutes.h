#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// The quickest ways of an empty network between all zones, as lists of link numbers.
struct ShortestRoutes {
    struct Way {
        std::int32_t origin;
        std::int32_t destination;
        std::vector<std::uint32_t> links;
    };

    std::vector<Way> ways;
    std::size_t linkCount = 0;
};

/// `path`: a network in the text format of the Transportation Networks collection. Its links are
/// numbered from 1 as they stand there. Throws std::runtime_error when it cannot be read.
ShortestRoutes shortestRoutes(std::string const& path);

}
