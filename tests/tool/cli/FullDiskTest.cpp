// A small disk that only one shell sees, and that fills up. If none can be mounted, a limit on the size of files
// replaces it.

#include "ToolSession.h"

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
        mayMount_ = session_->run("unshare --mount mount -t tmpfs none .").exitCode == 0;
    }

    /// Runs the lines with a small disk mounted on a directory.
    ProcessResult runWithDisk(std::string const& where, std::string const& lines) const {
        if (!mayMount_) return runWithLimit("256", lines);
        session_->write("lines.sh", "mount -t tmpfs -o size=256k none " + where + "\n" + lines);
        return session_->run("unshare --mount sh lines.sh");
    }
    /// Runs the lines with a full disk as the working directory.
    ProcessResult runWithFullDisk(std::string const& lines) const {
        if (!mayMount_) return runWithLimit("0", lines);
        return runWithDisk(". && cd .", "head -c 10M /dev/zero > filler 2>/dev/null\n" + lines + "rm filler\n");
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
    void expectReason(std::string const& errors) const {
        auto const* const reason = mayMount_ ? "No space left on device" : "File too large";
        EXPECT_NE(errors.find(reason), std::string::npos) << errors;
    }

    std::optional<ToolSession> session_;
    bool mayMount_ = false;

private:
    ProcessResult runWithLimit(std::string const& kibibytes, std::string const& lines) const {
        // Results and messages are redirected to files, so that they do not need the disk.
        session_->write("lines.sh",
            "{ { trap '' XFSZ; ulimit -f " + kibibytes + "\n" + lines + "\n} 2>&1 1>&3 | cat >&2; } 3>&1 | cat\n");
        return session_->run("bash lines.sh");
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
    if (!mayMount_) GTEST_SKIP() << "SKIPPED: no disk may be mounted here";
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
    if (!mayMount_) GTEST_SKIP() << "SKIPPED: no disk may be mounted here";
    session_->makeProject();
    writeRoutes();
    auto const result = runWithDisk("results", R"(
cubes routes import small.csv routes/1/1/1/1/1/1 >/dev/null
cubes routes import data.csv routedata/1/1/1/1/1/1 >/dev/null
head -c 10M /dev/zero > results/filler 2>/dev/null
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

TEST_P(FullDisk, isReportedByAProjectThatCanOnlyBeRead) {
    if (!mayMount_) GTEST_SKIP() << "SKIPPED: no disk may be mounted here";
    if (backend() != Backend::sqlite) GTEST_SKIP() << "SKIPPED: the database of the server is on another disk";
    session_->run("mkdir disk");
    session_->write("trips.csv", "origin,destination,value\n1,2,3\n");
    auto const result = runWithDisk("disk",
        "cubes init disk/delta > made && cubes import trips.csv Trips/1/1/1/1 --project disk/delta > made\n"
        "head -c 10M /dev/zero > disk/filler 2>/dev/null\n"
        "cubes cell Trips/1/1/1/1 1 2 --project disk/delta\n"
        "cubes use Trips/1/1/1/1 +1 --project disk/delta\n"
        "rm disk/filler\n"
        "cubes use Trips/1/1/1/1 +1 --project disk/delta\n");
    EXPECT_EQ(result.output, "3\nentry  Trips/1/1/1/1\nusers  1\n");
    EXPECT_NE(result.errors.find("the disk was full when it was opened"), std::string::npos) << result.errors;
}

// What the directory held before stays.
TEST_P(FullDisk, leavesNothingOfADemo) {
    auto const result = runWithDisk(". && cd .", R"(
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
    auto const result = runWithFullDisk(R"(
cubes init city; echo $?
ls -d city
)");
    EXPECT_EQ(result.output, "3\n");
    EXPECT_NE(result.errors.find("cannot create a project in city"), std::string::npos) << result.errors;
}

}
