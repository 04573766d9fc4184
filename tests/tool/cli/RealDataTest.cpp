// Real trip tables in the tool: imported into a cube, and exported to other formats and back without a changed cell.

#include "ToolSession.h"
#include "support/SharedData.h"

#include <nlohmann/json.hpp>

namespace {

using namespace cubes::test;

class RealData : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        session = std::make_unique<ToolSession>(backend());
        session->makeProject();
    }

    void succeeds(std::string const& line) const {
        auto const result = session->run(line);
        EXPECT_EQ(result.exitCode, 0) << line << "\n" << result.errors;
    }

    nlohmann::json json(std::string const& line) const { return nlohmann::json::parse(session->run(line).output); }

    /// The content of a matrix file, as another reader of the format prints it.
    std::string asReadByH5py(std::string const& file, std::string const& expression) const {
        auto const result = runPython("import h5py, numpy, sys\nf = h5py.File(sys.argv[1], 'r')\n"
                                      "cells = f['data/matrix'][:]\nzones = f['lookup/zone'][:].tolist()\nprint(" +
                                          expression + ")",
            {session->file("matrices/" + file)});
        return result.output + result.errors;
    }

    std::unique_ptr<ToolSession> session;
};

CUBES_BOTH_BACKENDS(RealData);

TEST_P(RealData, ofSiouxFallsIsPreservedByEveryFormat) {
    CUBES_REQUIRE_DATA("tntp/SiouxFalls_trips.tntp");
    succeeds("cubes import \"$DATA/tntp/SiouxFalls_trips.tntp\" Base/1/1/1/1");
    auto const shown = json("cubes show Base/1/1/1/1 --json");
    EXPECT_EQ(shown.at("zones"), 24);
    EXPECT_EQ(shown.at("total"), 360600.0);

    succeeds("cubes export Base/1/1/1/1 long.csv");
    succeeds("cubes export Base/1/1/1/1 wide.csv --form wide");
    succeeds("cubes export Base/1/1/1/1 trips.omx");
    succeeds("cubes import long.csv Base/1/1/1/2");
    succeeds("cubes import wide.csv Base/1/1/1/3");
    succeeds("cubes import trips.omx Base/1/1/1/4");
    std::string const everything = "zones, [row.tobytes().hex() for row in cells.astype('<f4')]";
    auto const first = asReadByH5py("1-1-1-1-1.odm", everything);
    EXPECT_TRUE(first.starts_with("[1, 2, 3, 4")) << first;
    for (auto const* copy : {"1-1-1-1-2.odm", "1-1-1-1-3.odm", "1-1-1-1-4.odm"})
        EXPECT_EQ(asReadByH5py(copy, everything), first) << copy;
}

TEST_P(RealData, ofChicagoHasThePublishedTotal) {
    CUBES_REQUIRE_DATA("tntp/ChicagoSketch_trips.tntp");
    succeeds("cubes import \"$DATA/tntp/ChicagoSketch_trips.tntp\" Base/1/1/1/1");
    auto const shown = json("cubes show Base/1/1/1/1 --json");
    EXPECT_EQ(shown.at("zones"), 387);
    EXPECT_EQ(shown.at("total"), 1260907.44);
    EXPECT_EQ(asReadByH5py("1-1-1-1-1.odm", "'%.2f' % cells.sum(dtype='f8')"), "1260907.44\n");
    auto const& database = session->database();
    EXPECT_EQ(
        database.sql("SELECT filename FROM " + database.table("public", "cube4data1")), (Rows{{"1-1-1-1-1.odm"}}));
}

TEST_P(RealData, ofAnOmxFileIsImportedByTable) {
    CUBES_REQUIRE_DATA("omx/example.omx");
    auto const refused = session->run("cubes import \"$DATA/omx/example.omx\" Base/1/1/1/1");
    EXPECT_NE(refused.exitCode, 0);
    EXPECT_NE(refused.errors.find("TRANSFERS"), std::string::npos) << refused.errors;
    auto const tables =
        runPython("import h5py, sys\nprint(*h5py.File(sys.argv[1], 'r')['data'])", {sharedData("omx/example.omx")});
    auto const name = tables.output.substr(0, tables.output.find(' '));
    succeeds("cubes import \"$DATA/omx/example.omx\" Base/1/1/1/1 --table " + name);
    EXPECT_EQ(json("cubes show Base/1/1/1/1 --json").at("rows"), 485);
}

}
