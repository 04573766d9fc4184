#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace cubes::test {

/// A road network in the text format of the Transportation Networks collection, and its shortest paths. Nodes are
/// numbered from 1; the first ones are the zones.
class Network {
public:
    static Network parse(std::string const& text);

    enum class Cost { length, freeFlowTime };

    int zones() const noexcept { return zones_; }
    /// The cost of the shortest path from each zone to each zone, row by row; 0 within a zone and infinite where there
    /// is no path. No path leads through a node below the first through node.
    std::vector<float> skim(Cost cost) const;

    struct Path {
        std::int32_t origin;
        std::int32_t destination;
        /// Link numbers, from 1 in the order of the text.
        std::vector<std::uint32_t> links;

        bool operator==(Path const&) const = default;
    };
    /// The shortest path from each zone to each other zone by that cost, in the order of origin and destination; none
    /// where there is no path. Of paths with equal cost it is always the same one.
    std::vector<Path> shortestPaths(Cost cost) const;

private:
    struct Link {
        std::uint32_t number;
        int from;
        int to;
        double length;
        double freeFlowTime;
    };
    /// By node: the cost of the shortest path, and its last link; null where there is no path.
    struct Tree {
        std::vector<double> costs;
        std::vector<Link const*> lastLinks;
    };

    Tree treeFrom(int zone, Cost cost) const;
    static Path pathTo(int zone, Tree const& tree);

    int zones_ = 0;
    int firstThroughNode_ = 1;
    // By their first node; there is no node 0.
    std::vector<std::vector<Link>> links_;
};

}
