// Skims of real networks: computed, stored, read back, and compared with an independent program's skims of the same
// network and its reading of the same file.

#include <numeric>

#include "support/Network.h"
#include "support/Process.h"
#include "support/SharedData.h"
#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

// The shortest paths between all nodes by Floyd and Warshall, where Network uses Dijkstra's algorithm.
constexpr char const* independentSkim = R"(
import h5py, numpy, re, sys
text = open(sys.argv[1]).read()
figure = lambda key: int(re.search('<' + key + '> *([0-9]+)', text).group(1))
zones, nodes, through = (figure(k) for k in ('NUMBER OF ZONES', 'NUMBER OF NODES', 'FIRST THRU NODE'))
column = {'length': 3, 'time': 4}[sys.argv[2]]
cost = numpy.full((nodes, nodes), numpy.inf)
for line in text.split('<END OF METADATA>')[1].splitlines():
    words = line.split()
    if words and words[0][0].isdigit():
        a, b = int(words[0]) - 1, int(words[1]) - 1
        cost[a, b] = min(cost[a, b], float(words[column]))
numpy.fill_diagonal(cost, 0)
for k in range(through - 1, nodes):
    numpy.minimum(cost, cost[:, k, None] + cost[None, k, :], out=cost)
with h5py.File(sys.argv[3]) as file:
    stored = file['data/matrix'][:]
    numbers = file['lookup/zone'][:].tolist()
expected = cost[:zones, :zones].astype('<f4')
print(stored.shape, numbers == list(range(1, zones + 1)), numpy.allclose(stored, expected, rtol=1e-6, atol=0))
)";

class NetworkSkim : public VarCubesTest {
protected:
    TRkMatrix matrixOf(Network const& network, Network::Cost cost) const {
        auto const cells = network.skim(cost);
        TRkMatrix matrix = TRkMatrix::inMemory(network.zones(), network.zones());
        auto const zones = static_cast<std::ptrdiff_t>(network.zones());
        for (int row = 0; row < network.zones(); ++row)
            std::copy_n(cells.begin() + row * zones, zones, matrix.RowAt(row, 8));
        std::vector<std::int32_t> numbers(static_cast<std::size_t>(zones));
        std::iota(numbers.begin(), numbers.end(), 1);
        matrix.SetZones(numbers);
        return matrix;
    }

    void storeAndCompare(std::string const& file, int zones, Network::Cost cost, char const* word, short result) {
        auto const network = Network::parse(readFile(file));
        ASSERT_EQ(network.zones(), zones);
        auto const computed = matrixOf(network, cost);
        ASSERT_TRUE(skims().Set(1, 1, 1, 1, result, 1, computed, lsReadWrite, false));
        std::unique_ptr<TRkMatrix> const stored(skims().Get(1, 1, 1, 1, result, 1, lsRead, false));
        ASSERT_NE(stored, nullptr);
        for (int row = 0; row < zones; ++row)
            ASSERT_TRUE(std::equal(stored->RowAt(row, 8), stored->RowAt(row, 8) + zones, computed.RowAt(row, 8)));
        EXPECT_EQ(stored->Zones(), computed.Zones());
        auto const path = skims().FileName(1, 1, 1, 1, result, 1, false).str();
        auto const seen = runPython(independentSkim, {file, word, path});
        EXPECT_EQ(seen.output, "(" + std::to_string(zones) + ", " + std::to_string(zones) + ") True True\n")
            << seen.errors;
    }

    void storeAndCompare(std::string const& file, int zones) {
        storeAndCompare(file, zones, Network::Cost::length, "length", 1);
        storeAndCompare(file, zones, Network::Cost::freeFlowTime, "time", 2);
    }
};

CUBES_BOTH_BACKENDS(NetworkSkim);

TEST_P(NetworkSkim, ofSiouxFallsAgreesWithAnotherProgram) {
    CUBES_REQUIRE_DATA("tntp/SiouxFalls_net.tntp");
    storeAndCompare(sharedData("tntp/SiouxFalls_net.tntp"), 24);
}

TEST_P(NetworkSkim, ofChicagoAgreesWithAnotherProgram) {
    CUBES_REQUIRE_DATA("tntp/ChicagoSketch_net.tntp");
    storeAndCompare(sharedData("tntp/ChicagoSketch_net.tntp"), 387);
}

// From 1 to 2 the path through zone 3 would be the shortest.
TEST_P(NetworkSkim, usesNoPathThroughAZoneThatMustNotBeCrossed) {
    TempDir const directory;
    auto const file = directory.file("net.tntp");
    writeFile(file,
        "<NUMBER OF ZONES> 3\n<NUMBER OF NODES> 4\n<FIRST THRU NODE> 4\n<END OF METADATA>\n~ header ;\n"
        "1 3 9 1 1 ;\n3 2 9 1 1 ;\n1 4 9 5 2 ;\n4 2 9 5 2 ;\n2 4 9 5 2 ;\n4 1 9 5 2 ;\n4 3 9 1 1 ;\n3 4 9 1 1 ;\n");
    storeAndCompare(file, 3);
    auto const paths = Network::parse(readFile(file)).shortestPaths(Network::Cost::length);
    ASSERT_EQ(paths.size(), 6u);
    EXPECT_EQ(paths[0].destination, 2);
    EXPECT_EQ(paths[0].links, (std::vector<std::uint32_t>{3, 4}));
    std::unique_ptr<TRkMatrix> const lengths(skims().Get(1, 1, 1, 1, 1, 1, lsRead, false));
    EXPECT_EQ(lengths->RowAt(0, 8)[1], 10.0f);
    EXPECT_EQ(lengths->RowAt(0, 8)[2], 1.0f);
}

}
}
