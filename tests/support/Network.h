#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace cubes::test {

/// A road network in the text format of the Transportation Networks collection, and what its
/// shortest ways are and cost. Nodes are counted from 1; the first ones are the zones.
class Network {
public:
    static Network parse(std::string const& text);

    enum class Cost { length, freeFlowTime };

    int zones() const noexcept { return zones_; }
    /// The cost of the cheapest way from each zone to each zone, row by row; 0 within a zone and
    /// infinite where there is no way. No way leads through a node below the first through node.
    std::vector<float> skim(Cost cost) const;

    struct Way {
        std::int32_t origin;
        std::int32_t destination;
        /// By number, from 1 as they stand in the text.
        std::vector<std::uint32_t> links;

        bool operator==(Way const&) const = default;
    };
    /// The cheapest way from each zone to each other, in the order of origin and destination; none
    /// where there is no way. Of ways that cost the same it is always the same one.
    std::vector<Way> ways(Cost cost) const;

private:
    struct Road {
        std::uint32_t number;
        int from;
        int to;
        double length;
        double freeFlowTime;
    };
    /// By node: what it costs to get there, and the last road of the way; null where there is none.
    struct Tree {
        std::vector<double> costs;
        std::vector<Road const*> roads;
    };

    Tree treeFrom(int zone, Cost cost) const;
    static Way wayTo(int zone, Tree const& tree);

    int zones_ = 0;
    int firstThroughNode_ = 1;
    // By the node where they begin; 0 is no node.
    std::vector<std::vector<Road>> roads_;
};

}
