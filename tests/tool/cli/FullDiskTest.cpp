// A small disk that fills up, and that only one shell sees. If none can be mounted, or CUBES_TEST_NO_MOUNT is set, the
// programs of the shell pretend it.

#include "ToolSession.h"

#include <cstdlib>
#include <optional>
#include <random>

namespace {

using namespace cubes::test;

class FullDisk : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        session_.emplace(backend());
    }

    /// Runs the lines with a small disk as the content of a directory, which `fill FILE` fills up.
    ProcessResult runWithDisk(std::string const& directory, std::string const& lines) const {
        session_->write("lines.sh", "fill() { dd if=/dev/zero of=$1 bs=4096 count=1000 2>/dev/null; }\n" + lines);
        session_->run("mkdir -p " + directory);
        if (mayMount())
            return session_->run(
                "unshare --mount sh -c 'mount -t tmpfs -o size=256k none " + directory + "; . ./lines.sh'");
        return session_->run("CUBES_DISK=" + session_->file(directory) +
                             " CUBES_DISK_SIZE=262144 LD_PRELOAD=" CUBES_FAULTY_DISK " sh lines.sh");
    }
    /// Small files of routes and their data, and a large one that is hard to compress.
    void writeRoutes() const {
        session_->run("mkdir -p results");
        std::string const header = "origin,destination,route,sequence,link,share\n";
        session_->write("small.csv", header + "1,2,1,1,7,1\n1,2,1,2,8,1\n");
        session_->write("other.csv", header + "1,2,1,1,9,1\n");
        session_->write("data.csv", "route,length:float\n0,1.5\n");
        std::mt19937 random(1);
        std::string large = header;
        for (int line = 0; line < 60'000; ++line)
            large += "1," + std::to_string(line % 1000 + 1) + ",1," + std::to_string(line) + "," +
                     std::to_string(random()) + ",1\n";
        session_->write("large.csv", large);
    }
    static void expectReason(std::string const& errors) {
        EXPECT_NE(errors.find("No space left on device"), std::string::npos) << errors;
    }

    std::optional<ToolSession> session_;

private:
    bool mayMount() const {
        return !std::getenv("CUBES_TEST_NO_MOUNT") &&
               session_->run("unshare --mount mount -t tmpfs none .").exitCode == 0;
    }
};

CUBES_BOTH_BACKENDS(FullDisk);

TEST_P(FullDisk, keepsTheOldMatrixAndAddsNoEntry) {
    session_->makeProject();
    session_->write("small.csv", ",1,2\n1,1,2\n2,3,4\n");
    session_->run("/usr/bin/python3 -c \"n = range(1, 401)\nprint(',' + ','.join(map(str, n)))\n"
                  "for i in n: print(i, *n, sep=',')\" > large.csv");
    auto const result = runWithDisk("matrices", R"(
cubes import small.csv Base/1/1/1/1 >/dev/null
cubes import large.csv Base/1/1/1/1; echo $?
cubes import large.csv Base/1/1/1/2; echo $?
cubes import large.csv New/1/1/1/1; echo $?
ls matrices
cubes cell Base/1/1/1/1 2 2
cubes list
)");
    EXPECT_EQ(result.output, "3\n3\n3\n1-1-1-1-1.odm\ncubes-id\n4\nnumber  name  entries\n     1  Base        1\n");
    EXPECT_NE(result.errors.find("cannot import large.csv into New/1/1/1/1: "), std::string::npos) << result.errors;
    EXPECT_NE(result.errors.find("2-1-1-1-1.odm"), std::string::npos) << result.errors;
    expectReason(result.errors);
}

// The disk has room for one file of this size.
TEST_P(FullDisk, leavesNothingOfACopyAndDoesNotPreventAMove) {
    session_->makeProject();
    session_->run("/usr/bin/python3 -c \"n = range(1, 191)\nprint(',' + ','.join(map(str, n)))\n"
                  "for i in n: print(i, *n, sep=',')\" > medium.csv");
    auto const result = runWithDisk("matrices", R"(
cubes import medium.csv Base/1/1/1/1 >/dev/null
cubes copy Base/1/1/1/1 Base/1/1/1/2; echo $?
cubes copy Base/1/1/1/1 New/1/1/1/1; echo $?
cubes entries --json | grep '"file"'
cubes move Base/1/1/1/1 Base/1/1/1/3 >/dev/null; echo $?
ls matrices
cubes cell Base/1/1/1/3 190 189
cubes list
)");
    EXPECT_EQ(result.output, "3\n3\n    \"file\": \"1-1-1-1-1.odm\",\n0\n1-1-1-1-3.odm\ncubes-id\n189\n"
                             "number  name  entries\n     1  Base        1\n");
    EXPECT_NE(result.errors.find("cannot copy Base/1/1/1/1 to New/1/1/1/1: "), std::string::npos) << result.errors;
}

TEST_P(FullDisk, keepsTheOldFileOfAnExport) {
    session_->makeProject();
    session_->run("/usr/bin/python3 -c \"n = range(1, 401)\nprint(',' + ','.join(map(str, n)))\n"
                  "for i in n: print(i, *n, sep=',')\" > large.csv");
    session_->run("cubes import large.csv Base/1/1/1/1 && mkdir disk");
    auto const result = runWithDisk("disk", R"(
echo old > disk/out.csv
echo old > disk/out.omx
cubes export Base/1/1/1/1 disk/out.csv; echo $?
cubes export Base/1/1/1/1 disk/out.omx; echo $?
cat disk/*
)");
    EXPECT_EQ(result.output, "3\n3\nold\nold\n");
    EXPECT_NE(result.errors.find("disk/out.csv"), std::string::npos) << result.errors;
    EXPECT_NE(result.errors.find("disk/out.omx"), std::string::npos) << result.errors;
}

// A file without a row is in the place of one entry: it is kept as well.
TEST_P(FullDisk, keepsTheOldRoutesAndAddsNoEntry) {
    session_->makeProject();
    writeRoutes();
    auto const result = runWithDisk("results", R"(
cubes routes import small.csv routes/1/1/1/1/1/1 >/dev/null
cp results/RouteStorage_Routes/1-1-1-1-1-1.FDB results/RouteStorage_Routes/1-1-1-1-1-3.FDB
cubes routes import large.csv routes/1/1/1/1/1/1; echo $?
cubes routes import large.csv routes/1/1/1/1/1/2; echo $?
cubes routes import large.csv routes/1/1/1/1/1/3; echo $?
ls -A results/RouteStorage_Routes
cmp results/RouteStorage_Routes/1-1-1-1-1-1.FDB results/RouteStorage_Routes/1-1-1-1-1-3.FDB
cubes routes show routes/1/1/1/1/1/1 --od 1 2
cubes list
)");
    EXPECT_EQ(result.output, "3\n3\n3\n.cubes-lock\n1-1-1-1-1-1.FDB\n1-1-1-1-1-3.FDB\n"
                             "route  origin  destination  share  links\n    0       1            2      1  7 8\n"
                             "number  name    entries\n    -9  routes        1\n");
    EXPECT_NE(result.errors.find("cannot import large.csv into routes/1/1/1/1/1/2: "), std::string::npos)
        << result.errors;
    expectReason(result.errors);
}

TEST_P(FullDisk, hasNoRoomEvenForASmallRouteFile) {
    session_->makeProject();
    writeRoutes();
    auto const result = runWithDisk("results", R"(
cubes routes import small.csv routes/1/1/1/1/1/1 >/dev/null
cubes routes import data.csv routedata/1/1/1/1/1/1 >/dev/null
fill results/filler
cubes routes import other.csv routes/1/1/1/1/1/1; echo $?
cubes routes import data.csv routedata/1/1/1/1/1/1; echo $?
cubes routes import data.csv routedata/1/1/1/1/1/2; echo $?
rm results/filler
cubes routes show routes/1/1/1/1/1/1 --od 1 2
cubes routes export routedata/1/1/1/1/1/1 back.csv >/dev/null; cmp data.csv back.csv
cubes list
ls -A results/RouteStorage_Routes
)");
    EXPECT_EQ(result.output, "3\n3\n3\n"
                             "route  origin  destination  share  links\n    0       1            2      1  7 8\n"
                             "number  name       entries\n    -9  routes           1\n   -10  routedata        1\n"
                             ".cubes-lock\n1-1-1-1-1-1.FDB\n");
    expectReason(result.errors);
}

// Only the database of SQLite is on the project's disk.
class FullDatabaseDisk : public FullDisk {};
INSTANTIATE_TEST_SUITE_P(, FullDatabaseDisk, testing::Values(Backend::sqlite),
    [](auto const& parameter) { return backendName(parameter.param); });

TEST_P(FullDatabaseDisk, isReportedByAProjectThatCanOnlyBeRead) {
    session_->run("mkdir disk");
    session_->write("trips.csv", "origin,destination,value\n1,2,3\n");
    auto const result = runWithDisk("disk",
        "cubes init disk/delta > made && cubes import trips.csv Trips/1/1/1/1 --project disk/delta > made\n"
        "fill disk/filler\n"
        "cubes cell Trips/1/1/1/1 1 2 --project disk/delta\n"
        "cubes use Trips/1/1/1/1 +1 --project disk/delta\n"
        "rm disk/filler\n"
        "cubes use Trips/1/1/1/1 +1 --project disk/delta\n");
    EXPECT_EQ(result.output, "3\nentry  Trips/1/1/1/1\nusers  1\n");
    EXPECT_NE(result.errors.find("the disk was full when it was opened"), std::string::npos) << result.errors;
}

// What the directory held before stays.
TEST_P(FullDisk, leavesNothingOfADemo) {
    auto const result = runWithDisk("disk", R"(
cd disk
mkdir mine && echo text > mine/notes
cubes demo mine; echo $?
cubes demo other/city; echo $?
ls -A mine
ls -d other
)");
    EXPECT_EQ(result.output, "3\n3\nnotes\n");
    EXPECT_NE(result.errors.find("cannot create a demo in mine: "), std::string::npos) << result.errors;
}

TEST_P(FullDisk, leavesNothingOfANewProject) {
    auto const result = runWithDisk("disk", R"(
cd disk
fill filler
cubes init city; echo $?
ls -d city
)");
    EXPECT_EQ(result.output, "3\n");
    EXPECT_NE(result.errors.find("cannot create a project in city"), std::string::npos) << result.errors;
}

}
