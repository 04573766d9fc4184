// The shortest paths by time of a real network: stored, fetched, and the trips of a real trip table assigned to them.

#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <sstream>

#include "routestorage/RouteCubeTest.h"
#include "support/Network.h"
#include "support/Process.h"
#include "support/SharedData.h"

using namespace VL::Interface;

namespace cubes::test {
namespace {

using Paths = std::vector<Network::Path>;
using Numbers = std::vector<std::uint32_t>;
using Cells = std::vector<float>;
using RouteSet = Reference<VelmoraRouteStorageRouteSetInterface>;

constexpr int zones = 387;

std::size_t placeOf(std::int32_t origin, std::int32_t destination) {
    return static_cast<std::size_t>((origin - 1) * zones + destination - 1);
}

// "Origin 1", then "1 : 0.5; 2 : 7;" and so on.
Cells tripsIn(std::string text) {
    text.erase(0, text.find("Origin", text.find("<END OF METADATA>")));
    for (char& c : text)
        if (c == ':' || c == ';') c = ' ';
    Cells trips(zones * zones);
    std::istringstream words(text);
    int origin = 0;
    for (std::string word; words >> word;)
        if (word == "Origin")
            words >> origin;
        else
            words >> trips.at(placeOf(origin, std::stoi(word)));
    return trips;
}

TRkMatrix matrixOf(Cells const& cells) {
    TRkMatrix matrix = TRkMatrix::inMemory(zones, zones);
    for (int row = 0; row < zones; ++row) std::copy_n(cells.begin() + row * zones, zones, matrix.RowAt(row, 8));
    return matrix;
}

Cells cellsOf(TRkMatrix const& matrix) {
    Cells cells;
    for (int row = 0; row < zones; ++row) cells.insert(cells.end(), matrix.RowAt(row, 8), matrix.RowAt(row, 8) + zones);
    return cells;
}

// By link number: the routes over it, in order.
std::vector<Numbers> routesByLink(Paths const& paths) {
    std::vector<Numbers> routes;
    for (std::uint32_t route = 0; route < paths.size(); ++route)
        for (auto const link : paths[route].links) {
            if (link >= routes.size()) routes.resize(link + 1);
            routes[link].push_back(route);
        }
    return routes;
}

std::uint32_t busiest(std::vector<Numbers> const& byLink) {
    auto const fewer = [](Numbers const& a, Numbers const& b) { return a.size() < b.size(); };
    return static_cast<std::uint32_t>(std::max_element(byLink.begin(), byLink.end(), fewer) - byLink.begin());
}

// The content of the three files, as another program reads it.
constexpr char const* independentSelection = R"(
import h5py, numpy, sys
set_file, trips_file, selected_file, link = sys.argv[1:]
with h5py.File(set_file) as f:
    origins, destinations, offsets, links = (f[name][:] for name in ('origins', 'destinations', 'offsets', 'links'))
    print(len(origins), len(links), f.attrs['cube_type'], *f.attrs['key'])
routes = numpy.unique(numpy.repeat(numpy.arange(len(origins)), numpy.diff(offsets.astype('i8')))[links == int(link)])
trips, cells = (h5py.File(name)['data/matrix'][:] for name in (trips_file, selected_file))
over = numpy.zeros(trips.shape, bool)
over[origins[routes] - 1, destinations[routes] - 1] = True
print(len(routes), numpy.array_equal(cells, numpy.where(over, trips, 0)))
)";

class NetworkRoutes : public RouteCubeTest {
protected:
    /// Stores the routes of a file elsewhere as 1/2/3/4/5/6.
    void storeAll(Paths const& paths) {
        TVlRouteStorageRouteSet made(elsewhere.file("made.FDB").c_str());
        ASSERT_EQ(made.open(romCreate, nullptr), 1);
        auto* const set = made.getInterface();
        for (auto const& path : paths)
            ASSERT_EQ(set->addRoute({path.origin, path.destination, 1, path.links.data(),
                          static_cast<std::int64_t>(path.links.size())}),
                rrDone);
        ASSERT_EQ(set->commit(), rrDone);
        Reference<RouteStorageCubeData> record(new RouteStorageCubeData);
        set->addRef();
        record->setRouteStorage(set);
        EXPECT_TRUE(store(routes(), 6, record.get()));
    }
    RouteSet fetchSet() {
        auto const record = fetch(routes(), 6);
        RouteSet set(static_cast<VelmoraRouteStorageRouteSetInterface*>(record->getRouteStorage()));
        set->open(romRead, nullptr);
        return set;
    }
    static Paths pathsOf(RouteSet const& set) {
        Paths paths;
        Route route{};
        while (set->getRoute(static_cast<std::int64_t>(paths.size()), &route) == rrDone)
            paths.push_back({route.origin, route.destination, {route.links, route.links + route.linkCount}});
        return paths;
    }
    /// Assigns the trips of the OD pairs to the routes by their shares.
    static Cells divided(Cells const& trips, RouteSet const& set, RouteNumbers const& found) {
        Cells selected(trips.size());
        for (std::int64_t i = 0; i < found.count; ++i) {
            Route route{};
            EXPECT_EQ(set->getRoute(found.numbers[i], &route), rrDone);
            auto const place = placeOf(route.origin, route.destination);
            selected[place] += trips[place] * route.share;
        }
        return selected;
    }
    TempDir const elsewhere;

private:
    ProviderPath nowhere_{""};
};

CUBES_BOTH_BACKENDS(NetworkRoutes);

TEST_P(NetworkRoutes, ofChicagoCarryItsTrips) {
    CUBES_REQUIRE_DATA("tntp/ChicagoSketch_net.tntp");
    CUBES_REQUIRE_DATA("tntp/ChicagoSketch_trips.tntp");
    auto const network = Network::parse(readFile(sharedData("tntp/ChicagoSketch_net.tntp")));
    auto const paths = network.shortestPaths(Network::Cost::freeFlowTime);
    auto const trips = tripsIn(readFile(sharedData("tntp/ChicagoSketch_trips.tntp")));
    EXPECT_NEAR(std::accumulate(trips.begin(), trips.end(), 0.0), 1260907.44, 0.01);

    TRkMatCubes tables(project().settings(), ".odm", false);
    ASSERT_TRUE(tables.Set("Base", 1, 1, 1, 1, matrixOf(trips), lsNone, false));
    storeAll(paths);
    EXPECT_TRUE(routes().SetParentCubenr(1, 2, 3, 4, 5, 6, tables.CubeNameToNr("Base")));
    EXPECT_TRUE(routes().SetParentPMTURI(1, 2, 3, 4, 5, 6, 1, 1, 1, 1, -1, -1));

    auto const set = fetchSet();
    EXPECT_EQ(set->countRoutes(), 149'382);
    EXPECT_EQ(set->countLinks(), 2'620'494);
    EXPECT_TRUE(pathsOf(set) == paths);

    auto const byLink = routesByLink(paths);
    auto const link = busiest(byLink);
    RouteNumbers found{};
    ASSERT_EQ(set->findRoutesOfLink(link, &found), rrDone);
    EXPECT_TRUE(Numbers(found.numbers, found.numbers + found.count) == byLink[link]);
    auto const selected = divided(trips, set, found);
    EXPECT_GT(std::count_if(selected.begin(), selected.end(), [](float cell) { return cell > 0; }), 1000);
    auto rest = trips;
    for (auto const route : byLink[link]) rest[placeOf(paths[route].origin, paths[route].destination)] = 0;
    std::transform(rest.begin(), rest.end(), selected.begin(), rest.begin(), std::plus<>());
    EXPECT_TRUE(rest == trips);

    TRkSelectedLinkCube results(project().settings(), false);
    ASSERT_TRUE(results.Set(1, 2, 3, 4, 5, 6, matrixOf(selected), lsNone, false));
    EXPECT_TRUE(results.Add(1, 2, 3, 4, 5, 6, ctRouteSet, 1, 2, 3, 4, 5, 6, false));
    std::unique_ptr<TRkMatrix> const stored(results.Get(1, 2, 3, 4, 5, 6, lsRead, false));
    ASSERT_NE(stored, nullptr);
    EXPECT_TRUE(cellsOf(*stored) == selected);
    EXPECT_EQ(parents(), "1|1|1|1|1|-1|-1\n-9|1|2|3|4|5|6\n");

    auto const seen =
        runPython(independentSelection, {routeFile(6), project().matrixDirectory() + "1-1-1-1-1.odm",
                                            results.FileName(1, 2, 3, 4, 5, 6, false).str(), std::to_string(link)});
    EXPECT_EQ(seen.output, "149382 2620494 -9 1 2 3 4 5 6\n" + std::to_string(byLink[link].size()) + " True\n")
        << seen.errors;
}

}
}
