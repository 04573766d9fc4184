#include "Benches.h"
#include "WorkDirectory.h"

#include "RouteSet.h"
#include "support/Network.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace bench {

namespace {

using namespace VL::Interface;
using cubes::test::Network;
using Paths = std::vector<Network::Path>;

struct Release {
    void operator()(RouteStorageInterface* storage) const { storage->release(); }
};
using RouteSetOwner = std::unique_ptr<VelmoraRouteStorageRouteSetInterface, Release>;

constexpr double microsecondsAStoredLink = 1;
constexpr double bytesALink = 6;
constexpr double microsecondsAPair = 100;
constexpr double microsecondsALink = 5000;
constexpr int rounds = 5;

RouteSetOwner opened(std::string const& file, RouteOpenMode mode) {
    RouteSetOwner set(new cubes::routes::RouteSet(file.c_str()));
    set->open(mode, nullptr);
    if (*VlInterfaceGetLastError() != '\0') throw std::runtime_error(VlInterfaceGetLastError());
    return set;
}

// Of the empty network.
Paths shortestPaths(std::string const& path) {
    std::ifstream file(path);
    std::string const text(std::istreambuf_iterator<char>(file), {});
    return Network::parse(text).shortestPaths(Network::Cost::freeFlowTime);
}

double linksOf(Paths const& paths) {
    std::size_t links = 0;
    for (auto const& path : paths) links += path.links.size();
    return static_cast<double>(links);
}

void store(Paths const& paths, std::string const& file) {
    RouteSetOwner const set = opened(file, romCreate);
    for (auto const& path : paths)
        set->addRoute(
            {path.origin, path.destination, 1.0f, path.links.data(), static_cast<std::int64_t>(path.links.size())});
    if (set->commit() != rrDone) throw std::runtime_error(VlInterfaceGetLastError());
}

// Reads all links of the found routes.
std::uint64_t sumOf(VelmoraRouteStorageRouteSetInterface const& set, RouteNumbers const& found) {
    std::uint64_t sum = 0;
    for (std::int64_t i = 0; i < found.count; ++i) {
        Route route;
        set.getRoute(found.numbers[i], &route);
        for (std::int64_t link = 0; link < route.linkCount; ++link) sum += route.links[link];
    }
    return sum;
}

double microseconds(auto const& work) {
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> times) {
    std::ranges::nth_element(times, times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2));
    return times[times.size() / 2];
}

double medianOf(auto const& work) {
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) times.push_back(microseconds(work));
    return median(std::move(times));
}

// The limit itself is in the column of the raw limit.
Result figure(std::string const& name, double allowed, double ours) {
    return {name + " (bare: allowed)", allowed, ours, 1, 0};
}

double ofEachPair(VelmoraRouteStorageRouteSetInterface const& set, Paths const& paths) {
    std::uint64_t sum = 0;
    double const all = medianOf([&] {
        for (auto const& path : paths) {
            RouteNumbers found;
            set.findRoutesOfPair(path.origin, path.destination, &found);
            sum += sumOf(set, found);
        }
    });
    if (sum == 0) throw std::runtime_error("no route was found");
    return all / static_cast<double>(paths.size());
}

std::uint32_t busiestLink(VelmoraRouteStorageRouteSetInterface const& set) {
    std::uint32_t busiest = 0;
    std::int64_t most = 0;
    for (std::uint32_t link = 0; link < 10000; ++link) {
        RouteNumbers found;
        set.findRoutesOfLink(link, &found);
        if (found.count > most) busiest = link;
        most = std::max(most, found.count);
    }
    return busiest;
}

double ofTheBusiestLink(VelmoraRouteStorageRouteSetInterface const& set) {
    std::uint32_t const link = busiestLink(set);
    std::uint64_t sum = 0;
    double const time = medianOf([&] {
        RouteNumbers found;
        set.findRoutesOfLink(link, &found);
        sum += sumOf(set, found);
    });
    if (sum == 0) throw std::runtime_error("no link was found");
    return time;
}

}

std::vector<Result> routes(std::string const& network) {
    Paths const paths = shortestPaths(network);
    WorkDirectory const directory;
    std::string const file = directory.path("routes.FDB");
    double const links = linksOf(paths);
    std::vector<Result> results;
    results.push_back(
        figure("store all routes", links * microsecondsAStoredLink, medianOf([&] { store(paths, file); })));
    results.push_back(
        figure("bytes of the file", links * bytesALink, static_cast<double>(std::filesystem::file_size(file))));
    results.push_back(
        figure("open the file", links * microsecondsAStoredLink, medianOf([&] { opened(file, romRead); })));
    RouteSetOwner const set = opened(file, romRead);
    results.push_back(figure("read the routes of an OD pair", microsecondsAPair, ofEachPair(*set, paths)));
    results.push_back(figure("read the routes of the busiest link", microsecondsALink, ofTheBusiestLink(*set)));
    return results;
}

}
