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
    network.roads_.resize(static_cast<std::size_t>(figure(text, "<NUMBER OF NODES>")) + 1);
    std::uint32_t roads = 0;
    std::istringstream lines(text.substr(text.find(end) + end.size()));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        double capacity = 0;
        Road road{};
        if (!(words >> road.from >> road.to >> capacity >> road.length >> road.freeFlowTime)) continue;
        road.number = ++roads;
        network.roads_.at(static_cast<std::size_t>(road.from)).push_back(road);
    }
    return network;
}

// Dijkstra's way.
Network::Tree Network::treeFrom(int zone, Cost cost) const {
    using Reached = std::pair<double, int>;
    Tree tree{std::vector(roads_.size(), unreachable), std::vector<Road const*>(roads_.size())};
    std::priority_queue<Reached, std::vector<Reached>, std::greater<>> open;
    tree.costs[static_cast<std::size_t>(zone)] = 0;
    open.emplace(0, zone);
    while (!open.empty()) {
        auto const [reached, node] = open.top();
        open.pop();
        if (reached > tree.costs[static_cast<std::size_t>(node)]) continue;
        if (node != zone && node < firstThroughNode_) continue;
        for (auto const& road : roads_[static_cast<std::size_t>(node)]) {
            double const total = reached + (cost == Cost::length ? road.length : road.freeFlowTime);
            auto const to = static_cast<std::size_t>(road.to);
            if (total >= tree.costs[to]) continue;
            tree.costs[to] = total;
            tree.roads[to] = &road;
            open.emplace(total, road.to);
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

std::vector<Network::Way> Network::ways(Cost cost) const {
    std::vector<Way> all;
    for (int origin = 1; origin <= zones_; ++origin) {
        auto const tree = treeFrom(origin, cost);
        for (int destination = 1; destination <= zones_; ++destination)
            if (destination != origin && tree.roads[static_cast<std::size_t>(destination)])
                all.push_back(wayTo(destination, tree));
    }
    return all;
}

Network::Way Network::wayTo(int zone, Tree const& tree) {
    Way way{zone, zone, {}};
    while (auto const* const road = tree.roads[static_cast<std::size_t>(way.origin)]) {
        way.links.push_back(road->number);
        way.origin = road->from;
    }
    std::reverse(way.links.begin(), way.links.end());
    return way;
}

}
