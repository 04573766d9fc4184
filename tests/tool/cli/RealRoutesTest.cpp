// The shortest paths by time of a real network in the tool, and a select link analysis of its busiest link with a real
// trip table.

#include "ToolSession.h"
#include "support/Network.h"
#include "support/SharedData.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>

namespace {

using namespace cubes::test;
using Paths = std::vector<Network::Path>;

// Every path has all trips of its OD pair. Rows and columns are in an unusual order.
std::string csvOf(Paths const& paths) {
    std::string text = "origin,destination,link,sequence,route,share\n";
    for (auto const& path : paths)
        for (auto place = path.links.size(); place-- > 0;)
            text += std::to_string(path.origin) + "," + std::to_string(path.destination) + "," +
                    std::to_string(path.links[place]) + "," + std::to_string(place) + ",1,1\n";
    return text;
}

Paths shortestPathsIn(std::string const& network) {
    return Network::parse(readFile(sharedData(network))).shortestPaths(Network::Cost::freeFlowTime);
}

std::uint32_t busiestLink(Paths const& paths) {
    std::map<std::uint32_t, int> routes;
    for (auto const& path : paths)
        for (auto const link : path.links) ++routes[link];
    auto const fewer = [](auto const& a, auto const& b) { return a.second < b.second; };
    return std::max_element(routes.begin(), routes.end(), fewer)->first;
}

// Computes the select link result independently, from the routes and trips as they were imported, and compares it with
// the tool's.
constexpr char const* independentSelection = R"(
import csv, h5py, numpy, re, sys
routes_csv, trips_tntp, link, set_file, selected_file = sys.argv[1:]
paths = {}
for row in csv.DictReader(open(routes_csv)):
    path = paths.setdefault((int(row['origin']), int(row['destination'])), {})
    path[int(row['sequence'])] = int(row['link'])
paths = {pair: [path[i] for i in sorted(path)] for pair, path in paths.items()}

text = open(trips_tntp).read()
zones = int(re.search('<NUMBER OF ZONES> *([0-9]+)', text).group(1))
trips = numpy.zeros((zones, zones), '<f4')
for block in text.split('Origin')[1:]:
    origin, *cells = re.findall('[0-9.]+', block)
    for destination, value in zip(cells[::2], cells[1::2]):
        trips[int(origin) - 1, int(destination) - 1] = float(value)

selected, rest = numpy.zeros_like(trips), trips.copy()
for (origin, destination), path in paths.items():
    if int(link) in path:
        selected[origin - 1, destination - 1] = trips[origin - 1, destination - 1]
        rest[origin - 1, destination - 1] = 0

with h5py.File(set_file) as f:
    ends = zip(f['origins'][:].tolist(), f['destinations'][:].tolist())
    offsets, links = f['offsets'][:].tolist(), f['links'][:].tolist()
    kept = {pair: links[offsets[i]:offsets[i + 1]] for i, pair in enumerate(ends)}
    print('routes', len(kept), kept == paths, set(f['shares'][:].tolist()), f.attrs['cube_type'], *f.attrs['key'])
with h5py.File(selected_file) as f:
    cells = f['data/matrix'][:]
    print('selected', numpy.array_equal(cells, selected), f['lookup/zone'][:].tolist() == list(range(1, zones + 1)))
    print('with the rest all trips', numpy.array_equal(cells + rest, trips))
    print('pairs', numpy.count_nonzero(cells), 'trips %f' % cells.sum(dtype='f8'))
)";

class RealRoutes : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        session = std::make_unique<ToolSession>(backend());
        session->makeProject();
    }

    std::string output(std::string const& line) const {
        auto const result = session->run(line);
        EXPECT_EQ(result.exitCode, 0) << line << "\n" << result.errors;
        return result.output;
    }
    nlohmann::json json(std::string const& line) const { return nlohmann::json::parse(output(line + " --json")); }

    std::unique_ptr<ToolSession> session;
};

CUBES_BOTH_BACKENDS(RealRoutes);

TEST_P(RealRoutes, ofSiouxFallsGiveTheRightSelectLinkResult) {
    CUBES_REQUIRE_DATA("tntp/SiouxFalls_net.tntp");
    CUBES_REQUIRE_DATA("tntp/SiouxFalls_trips.tntp");
    auto const paths = shortestPathsIn("tntp/SiouxFalls_net.tntp");
    session->write("routes.csv", csvOf(paths));
    auto const link = std::to_string(busiestLink(paths));

    output("cubes import \"$DATA/tntp/SiouxFalls_trips.tntp\" Base/1/1/1/1");
    auto const imported = json("cubes routes import routes.csv routes/1/1/1/1/1/1");
    EXPECT_EQ(imported.at("routes"), 24 * 23);
    output("cubes parent routes/1/1/1/1/1/1 Base/1/1/1/1");
    auto const selected =
        json("cubes routes select routes/1/1/1/1/1/1 " + link + " Base/1/1/1/1 selectedlink/1/1/1/1/1/1");

    EXPECT_GT(selected.at("total"), 0.0);

    auto const seen =
        runPython(independentSelection, {session->file("routes.csv"), sharedData("tntp/SiouxFalls_trips.tntp"), link,
                                            imported.at("file"), selected.at("file")});
    EXPECT_EQ(seen.output, "routes 552 True {1.0} -9 1 1 1 1 1 1\n"
                           "selected True True\n"
                           "with the rest all trips True\n"
                           "pairs " +
                               std::to_string(selected.at("pairs").get<int>()) + " trips " +
                               std::to_string(selected.at("total").get<double>()) + "\n")
        << seen.errors;
    EXPECT_EQ(
        output("cubes tree Base/1/1/1/1"), "* Base/1/1/1/1\n    routes/1/1/1/1/1/1\n      selectedlink/1/1/1/1/1/1\n");
}

TEST_P(RealRoutes, ofSiouxFallsArePreservedByExport) {
    CUBES_REQUIRE_DATA("tntp/SiouxFalls_net.tntp");
    auto const paths = shortestPathsIn("tntp/SiouxFalls_net.tntp");
    session->write("routes.csv", csvOf(paths));
    output("cubes routes import routes.csv routes/1/1/1/1/1/1 && cubes routes export routes/1/1/1/1/1/1 again.csv");
    output("cubes routes import again.csv routes/1/1/1/1/1/1 && cubes routes export routes/1/1/1/1/1/1 twice.csv");
    EXPECT_EQ(session->read("twice.csv"), session->read("again.csv"));
    auto const& last = paths.back();
    std::vector<std::uint32_t> const links = json("cubes routes show routes/1/1/1/1/1/1 --od " +
                                                  std::to_string(last.origin) + " " + std::to_string(last.destination))
                                                 .at(0)
                                                 .at("links");
    EXPECT_EQ(links, last.links);
}

}
