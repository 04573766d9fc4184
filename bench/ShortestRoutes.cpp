#include "ShortestRoutes.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <limits>
#include <queue>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

struct Link {
    std::size_t from = 0;
    std::size_t to = 0;
    double time = 0;
};

struct Network {
    std::size_t zones = 0;
    std::vector<Link> links;
    // By node: the places of the links that begin there.
    std::vector<std::vector<std::size_t>> leaving;
};

void addLink(Network& network, Link const& link) {
    network.leaving.resize(std::max({network.leaving.size(), link.from + 1, link.to + 1}));
    network.leaving[link.from].push_back(network.links.size());
    network.links.push_back(link);
}

Network readNetwork(std::string const& path) {
    std::ifstream file(path);
    Network network;
    for (std::string line; std::getline(file, line);) {
        std::string const zones = "<NUMBER OF ZONES>";
        if (line.starts_with(zones)) network.zones = std::stoul(line.substr(zones.size()));
        std::istringstream words(line);
        Link link;
        double capacity = 0;
        double length = 0;
        if (words >> link.from >> link.to >> capacity >> length >> link.time) addLink(network, link);
    }
    if (network.zones == 0 || network.leaving.size() <= network.zones)
        throw std::runtime_error("no network in " + path);
    return network;
}

// By node: the place of the last link of the quickest way there.
std::vector<std::size_t> treeFrom(std::size_t zone, Network const& network) {
    using Reached = std::pair<double, std::size_t>;
    std::vector<double> times(network.leaving.size(), std::numeric_limits<double>::infinity());
    std::vector<std::size_t> last(times.size(), network.links.size());
    std::priority_queue<Reached, std::vector<Reached>, std::greater<>> open;
    times[zone] = 0;
    open.emplace(0, zone);
    while (!open.empty()) {
        auto const [time, node] = open.top();
        open.pop();
        if (time > times[node]) continue;
        for (std::size_t const place : network.leaving[node]) {
            Link const& link = network.links[place];
            if (time + link.time >= times[link.to]) continue;
            times[link.to] = time + link.time;
            last[link.to] = place;
            open.emplace(times[link.to], link.to);
        }
    }
    return last;
}

std::vector<std::uint32_t> wayTo(std::size_t zone, std::vector<std::size_t> const& last, Network const& network) {
    std::vector<std::uint32_t> links;
    for (std::size_t node = zone; last[node] < network.links.size(); node = network.links[last[node]].from)
        links.push_back(static_cast<std::uint32_t>(last[node] + 1));
    std::reverse(links.begin(), links.end());
    return links;
}

}

ShortestRoutes shortestRoutes(std::string const& path) {
    Network const network = readNetwork(path);
    ShortestRoutes routes;
    for (std::size_t origin = 1; origin <= network.zones; ++origin) {
        std::vector<std::size_t> const last = treeFrom(origin, network);
        for (std::size_t destination = 1; destination <= network.zones; ++destination) {
            if (destination == origin) continue;
            auto links = wayTo(destination, last, network);
            routes.linkCount += links.size();
            routes.ways.push_back(
                {static_cast<std::int32_t>(origin), static_cast<std::int32_t>(destination), std::move(links)});
        }
    }
    return routes;
}

}
