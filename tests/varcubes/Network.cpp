#include "varcubes/Network.h"

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
    std::istringstream lines(text.substr(text.find(end) + end.size()));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::size_t from = 0;
        double capacity = 0;
        Road road{};
        if (words >> from >> road.to >> capacity >> road.length >> road.freeFlowTime)
            network.roads_.at(from).push_back(road);
    }
    return network;
}

// Dijkstra's way.
std::vector<double> Network::costsFrom(int zone, Cost cost) const {
    using Reached = std::pair<double, int>;
    std::vector<double> costs(roads_.size(), unreachable);
    std::priority_queue<Reached, std::vector<Reached>, std::greater<>> open;
    costs[static_cast<std::size_t>(zone)] = 0;
    open.emplace(0, zone);
    while (!open.empty()) {
        auto const [reached, node] = open.top();
        open.pop();
        if (reached > costs[static_cast<std::size_t>(node)]) continue;
        if (node != zone && node < firstThroughNode_) continue;
        for (auto const& road : roads_[static_cast<std::size_t>(node)]) {
            double const total = reached + (cost == Cost::length ? road.length : road.freeFlowTime);
            auto& known = costs[static_cast<std::size_t>(road.to)];
            if (total >= known) continue;
            known = total;
            open.emplace(total, road.to);
        }
    }
    return costs;
}

std::vector<float> Network::skim(Cost cost) const {
    std::vector<float> cells;
    for (int origin = 1; origin <= zones_; ++origin) {
        auto const costs = costsFrom(origin, cost);
        for (int destination = 1; destination <= zones_; ++destination)
            cells.push_back(static_cast<float>(costs[static_cast<std::size_t>(destination)]));
    }
    return cells;
}

}
