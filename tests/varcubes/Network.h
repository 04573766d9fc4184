#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace cubes::test {

/// A road network in the text format of the Transportation Networks collection, and what its
/// shortest ways cost. Nodes are counted from 1; the first ones are the zones.
class Network {
public:
    static Network parse(std::string const& text);

    enum class Cost { length, freeFlowTime };

    int zones() const noexcept { return zones_; }
    /// The cost of the cheapest way from each zone to each zone, row by row; 0 within a zone and
    /// infinite where there is no way. No way leads through a node below the first through node.
    std::vector<float> skim(Cost cost) const;

private:
    struct Road {
        int to;
        double length;
        double freeFlowTime;
    };

    std::vector<double> costsFrom(int zone, Cost cost) const;

    int zones_ = 0;
    int firstThroughNode_ = 1;
    // By the node where they begin; 0 is no node.
    std::vector<std::vector<Road>> roads_;
};

}
