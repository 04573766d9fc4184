// Copies and moves between projects: on the other backend, on the same database, in the same directory.

#include "ToolSession.h"

#include <filesystem>

namespace {

using namespace cubes::test;
namespace fs = std::filesystem;

/// A project in the working directory over the backend, and one in "other" over SQLite.
class BetweenProjects : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        session = std::make_unique<ToolSession>(backend());
        session->makeProject();
        succeeds(
            "/usr/bin/python3 -c \"import random; r = random.Random(5); n = range(101, 161)\n"
            "print('', *n, sep=',')\nfor i in n: print(i, *(r.uniform(0, 1e6) for j in n), sep=',')\" > trips.csv");
    }

    void succeeds(std::string const& line) const {
        auto const result = session->run(line);
        ASSERT_EQ(result.exitCode, 0) << line << "\n" << result.errors;
    }
    std::string output(std::string const& line) const { return session->run(line).output; }

    /// Zone numbers and the bits of all cells, as another reader sees them.
    std::string content(std::string const& file) const {
        auto const read =
            runPython("import h5py, sys\nf = h5py.File(sys.argv[1], 'r')\n"
                      "print(f['lookup/zone'][:].tolist(), f['data/matrix'][:].astype('<f4').tobytes().hex())",
                {session->file(file)});
        EXPECT_EQ(read.exitCode, 0) << read.errors;
        return read.output;
    }

    std::unique_ptr<ToolSession> session;
};

CUBES_BOTH_BACKENDS(BetweenProjects);

struct Road {
    char const* there;
    char const* file;
    /// The directory of files in both projects.
    char const* directory;
    char const* back;
    char const* fileBack;
};

constexpr Road roads[] = {
    {"Base/1/1/1/1", "1-1-1-1-1.odm", "matrices", "Returned/1/1/1/1", "2-1-1-1-1.odm"},
    {"fare/1/1/1/1", "-8-1-1-1-1.frs", "matrices", "fare/1/1/1/2", "-8-1-1-1-2.frs"},
    {"skim/1/1/1/1/1/0", "1-1-1-1-1-0.skm", "results", "skim/1/1/1/1/2/0", "1-1-1-1-2-0.skm"},
};

// The demo cannot have its entries where the database holds them for another project.
TEST_P(BetweenProjects, aDemoThatFailsLeavesNothingInASharedDatabase) {
    succeeds("cubes import trips.csv Trips/2/1/1/1");
    auto const before = session->state();
    succeeds("mkdir city && echo text > city/notes");
    auto const result = session->run("cubes demo city --database \"$DATABASE\"");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.errors.find("cannot create a demo in city: Trips/2/1/1/1: it already exists"), std::string::npos)
        << result.errors;
    EXPECT_EQ(output("ls -A city"), "notes\n");
    succeeds("rm -r city");
    EXPECT_EQ(session->state(), before);
}

TEST_P(BetweenProjects, everyCellIsCopiedThereAndBack) {
    succeeds("cubes init other");
    for (Road const& road : roads) {
        SCOPED_TRACE(road.there);
        std::string const there = road.there;
        std::string const directory = std::string(road.directory) + "/";
        succeeds("cubes import trips.csv " + there);
        succeeds("cubes copy " + there + " " + there + " --from-project . --project other");
        succeeds("cubes copy " + there + " " + road.back + " --from-project other");
        std::string const first = content(directory + road.file);
        EXPECT_GT(first.size(), 60u * 60 * 8);
        EXPECT_EQ(content("other/" + directory + road.file), first);
        EXPECT_EQ(content(directory + road.fileBack), first);
        succeeds("cubes export " + there + " first.csv && cubes export " + road.back + " back.csv");
        EXPECT_EQ(session->read("first.csv"), session->read("back.csv"));
    }
}

TEST_P(BetweenProjects, aMoveLeavesNothingBehind) {
    succeeds("cubes init other");
    for (Road const& road : roads) {
        SCOPED_TRACE(road.there);
        std::string const there = road.there;
        succeeds("cubes import trips.csv " + there);
        std::string const before = content(std::string(road.directory) + "/" + road.file);
        succeeds("cubes move " + there + " " + there + " --from-project . --project other");
        EXPECT_EQ(content("other/" + std::string(road.directory) + "/" + road.file), before);
    }
    EXPECT_EQ(output("cubes entries"), "");
    EXPECT_EQ(output("ls matrices results"), "matrices:\ncubes-id\n\nresults:\ncubes-id\n");
    EXPECT_EQ(output("cubes list --project other"),
        "number  name  entries\n     1  Base        1\n    -1  skim        1\n"
        "    -8  fare        1\n");
}

TEST_P(BetweenProjects, namesOfCubesBelongToEachProject) {
    succeeds("cubes init other");
    succeeds("cubes add First --project other && cubes import trips.csv Base/1/1/1/1 --project other");
    succeeds("cubes copy Base/1/1/1/1 Base/1/1/1/1 --from-project other");
    EXPECT_EQ(output("ls matrices other/matrices"),
        "matrices:\n1-1-1-1-1.odm\ncubes-id\n\nother/matrices:\n2-1-1-1-1.odm\ncubes-id\n");
    EXPECT_EQ(output("cubes copy First/1/1/1/1 Base/1/1/1/2 --from-project other; echo $?"), "1\n");
}

TEST_P(BetweenProjects, onOneDatabaseTheEntryOfTheOtherProjectIsKept) {
    succeeds("cubes init other --database \"$DATABASE\" && cubes import trips.csv Own/1/1/1/1");
    succeeds("cubes import trips.csv Base/1/1/1/1 --project other");
    auto const before = session->state();
    for (std::string const command : {"cubes copy Base/1/1/1/1 Base/1/1/1/1 --from-project other",
             "cubes move Base/1/1/1/1 Base/1/1/1/1 --from-project other", "cubes import trips.csv Base/1/1/1/1",
             "cubes move Base/1/1/1/1 Base/1/1/1/2", "cubes remove Base/1/1/1/1", "cubes remove Base",
             "cubes clear Base"}) {
        auto const result = session->run(command);
        EXPECT_EQ(result.exitCode, 1) << command;
        EXPECT_NE(result.errors.find("project"), std::string::npos) << command << "\n" << result.errors;
    }
    EXPECT_EQ(session->state(), before);
    std::string const there = content("other/matrices/2-1-1-1-1.odm");
    succeeds("cubes move Base/1/1/1/1 Base/1/1/1/2 --from-project other");
    EXPECT_EQ(output("ls matrices other/matrices"),
        "matrices:\n1-1-1-1-1.odm\n2-1-1-1-2.odm\ncubes-id\n\nother/matrices:\ncubes-id\n");
    EXPECT_EQ(content("matrices/2-1-1-1-2.odm"), there);
}

TEST_P(BetweenProjects, onOneDatabaseInitReportsTheSharedEntries) {
    EXPECT_EQ(session->run("cubes init none --database \"$DATABASE\"").errors, "");
    succeeds("cubes import trips.csv Base/1/1/1/1 && cubes import trips.csv fare/1/1/1/1");
    EXPECT_EQ(session->run("cubes init other --database \"$DATABASE\"").errors,
        "cubes: note: the database holds 2 entries of cubes from other projects; they are shared\n");
}

TEST_P(BetweenProjects, inOneDirectoryNothingIsCopied) {
    succeeds("cubes init other && cubes import trips.csv Base/1/1/1/1");
    succeeds("sed -i 's|^matrix_directory.*|matrix_directory = \"../matrices\"|' other/cubes.toml");
    auto const before = session->state();
    for (auto const* command : {"cubes copy", "cubes move"}) {
        auto const result =
            session->run(command + std::string(" Base/1/1/1/1 Base/1/1/1/2 --from-project . --project other"));
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_NE(result.errors.find("both projects keep it in one directory"), std::string::npos) << result.errors;
    }
    EXPECT_EQ(session->state(), before);
}

TEST_P(BetweenProjects, aTruncatedFileIsReportedAndNothingChanges) {
    succeeds("cubes init other && cubes import trips.csv Base/1/1/1/1 --project other");
    fs::resize_file(session->file("other/matrices/1-1-1-1-1.odm"), 100);
    auto const before = session->state();
    for (auto const* command : {"cubes copy", "cubes move"}) {
        auto const result = session->run(command + std::string(" Base/1/1/1/1 New/1/1/1/1 --from-project other"));
        EXPECT_EQ(result.exitCode, 3);
        EXPECT_NE(result.errors.find("1-1-1-1-1.odm"), std::string::npos) << result.errors;
    }
    EXPECT_EQ(session->state(), before);
    EXPECT_NE(output("cubes entries --project other").find("unreadable"), std::string::npos);
}

struct RoutesRoad {
    char const* entry;
    char const* other;
    char const* csv;
    char const* file;
    char const* otherFile;
};

constexpr RoutesRoad roadsOfRoutes[] = {
    {"routes/1/1/1/1/1/1", "routes/1/1/1/1/1/2", "routes.csv", "RouteStorage_Routes/1-1-1-1-1-1.FDB",
        "RouteStorage_Routes/1-1-1-1-1-2.FDB"},
    {"routedata/1/1/1/1/1/1", "routedata/1/1/1/1/1/2", "data.csv", "RouteStorage_RouteData/1-1-1-1-1-1.FDB",
        "RouteStorage_RouteData/1-1-1-1-1-2.FDB"},
};

TEST_P(BetweenProjects, routesInUseAreNeitherReadNorReplaced) {
    session->write("routes.csv", "origin,destination,route,sequence,link,share\n1,2,1,1,7,1\n");
    session->write("data.csv", "route,length:float\n0,5.5\n");
    succeeds("cubes init other");
    for (auto const& [entry, other, csv, file, otherFile] : roadsOfRoutes) {
        SCOPED_TRACE(entry);
        auto const refused = [&, from = std::string(entry), to = std::string(other)](std::string const& inUse) {
            auto const files = listing(session->directory());
            auto const rows = output("cubes entries --json; cubes entries --json --project other");
            for (auto const* command : {"cubes copy ", "cubes move "}) {
                auto const result = session->run(command + from + " " + to + " --from-project other");
                EXPECT_EQ(result.exitCode, 1);
                EXPECT_NE(result.errors.find(inUse + " is in use; try again later"), std::string::npos)
                    << result.errors;
            }
            EXPECT_EQ(listing(session->directory()), files);
            EXPECT_EQ(output("cubes entries --json; cubes entries --json --project other"), rows);
        };
        auto const use = std::string("cubes use ");
        succeeds(std::string("cubes routes import ") + csv + " " + entry + " --project other");
        succeeds(use + entry + " +1 --project other");
        refused(entry);
        succeeds(use + entry + " -1 --project other");
        succeeds(std::string("cubes routes import ") + csv + " " + other + " && " + use + other + " +1");
        auto const before = session->read(std::string("results/") + otherFile);
        refused(other);
        EXPECT_EQ(session->read(std::string("results/") + otherFile), before);
        succeeds(use + other + " -1");
        succeeds(std::string("cubes copy ") + entry + " " + other + " --from-project other");
        // The copy records its own entry; the routes are the same.
        succeeds(std::string("cubes routes export ") + entry + " there.csv --project other");
        succeeds(std::string("cubes routes export ") + other + " here.csv && cmp there.csv here.csv");
    }
}

}
