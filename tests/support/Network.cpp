#include "support/Network.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <queue>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace cubes::test {

namespace {

constexpr double unreachable = std::numeric_limits<double>::infinity();

int figure(std::string const& text, std::string const& key) {
    auto const place = text.find(key);
    if (place == std::string::npos) throw std::runtime_error("the network has no " + key);
    return std::stoi(text.substr(place + key.size()));
}

}

Network Network::parse(std::string const& text) {
    std::string const end = "<END OF METADATA>";
    Network network;
    network.zones_ = figure(text, "<NUMBER OF ZONES>");
    network.firstThroughNode_ = figure(text, "<FIRST THRU NODE>");
    network.links_.resize(static_cast<std::size_t>(figure(text, "<NUMBER OF NODES>")) + 1);
    std::uint32_t count = 0;
    std::istringstream lines(text.substr(text.find(end) + end.size()));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        double capacity = 0;
        Link link{};
        if (!(words >> link.from >> link.to >> capacity >> link.length >> link.freeFlowTime)) continue;
        link.number = ++count;
        network.links_.at(static_cast<std::size_t>(link.from)).push_back(link);
    }
    return network;
}

// Dijkstra's algorithm.
Network::Tree Network::treeFrom(int zone, Cost cost) const {
    using Reached = std::pair<double, int>;
    Tree tree{std::vector(links_.size(), unreachable), std::vector<Link const*>(links_.size())};
    std::priority_queue<Reached, std::vector<Reached>, std::greater<>> open;
    tree.costs[static_cast<std::size_t>(zone)] = 0;
    open.emplace(0, zone);
    while (!open.empty()) {
        auto const [reached, node] = open.top();
        open.pop();
        if (reached > tree.costs[static_cast<std::size_t>(node)]) continue;
        if (node != zone && node < firstThroughNode_) continue;
        for (auto const& link : links_[static_cast<std::size_t>(node)]) {
            double const total = reached + (cost == Cost::length ? link.length : link.freeFlowTime);
            auto const to = static_cast<std::size_t>(link.to);
            if (total >= tree.costs[to]) continue;
            tree.costs[to] = total;
            tree.lastLinks[to] = &link;
            open.emplace(total, link.to);
        }
    }
    return tree;
}

std::vector<float> Network::skim(Cost cost) const {
    std::vector<float> cells;
    for (int origin = 1; origin <= zones_; ++origin) {
        auto const costs = treeFrom(origin, cost).costs;
        for (int destination = 1; destination <= zones_; ++destination)
            cells.push_back(static_cast<float>(costs[static_cast<std::size_t>(destination)]));
    }
    return cells;
}

std::vector<Network::Path> Network::shortestPaths(Cost cost) const {
    std::vector<Path> all;
    for (int origin = 1; origin <= zones_; ++origin) {
        auto const tree = treeFrom(origin, cost);
        for (int destination = 1; destination <= zones_; ++destination)
            if (destination != origin && tree.lastLinks[static_cast<std::size_t>(destination)])
                all.push_back(pathTo(destination, tree));
    }
    return all;
}

Network::Path Network::pathTo(int zone, Tree const& tree) {
    Path path{zone, zone, {}};
    while (auto const* const link = tree.lastLinks[static_cast<std::size_t>(path.origin)]) {
        path.links.push_back(link->number);
        path.origin = link->from;
    }
    std::reverse(path.links.begin(), path.links.end());
    return path;
}

}
