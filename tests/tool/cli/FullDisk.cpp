// A small disk of its own, seen by one shell only, that fills up.

#include "ToolSession.h"

namespace {

using namespace cubes::test;

#define REQUIRE_MOUNT(session)                                                                                         \
    if ((session).run("unshare --mount mount -t tmpfs none .").exitCode != 0)                                          \
        GTEST_SKIP() << "SKIPPED: a small disk cannot be mounted here";

class FullDisk : public BackendTest {
protected:
    /// Runs the lines with a small disk in a directory.
    static ProcessResult runWithDisk(ToolSession const& session, std::string const& where, std::string const& lines) {
        session.write("lines.sh", "mount -t tmpfs -o size=256k none " + where + "\n" + lines);
        return session.run("unshare --mount sh lines.sh");
    }
};

CUBES_BOTH_BACKENDS(FullDisk);

TEST_P(FullDisk, leavesTheOldMatrixAndNoNewEntry) {
    ToolSession const session(backend());
    REQUIRE_MOUNT(session);
    session.makeProject();
    session.write("small.csv", ",1,2\n1,1,2\n2,3,4\n");
    session.run("/usr/bin/python3 -c \"n = range(1, 401)\nprint(',' + ','.join(map(str, n)))\n"
                "for i in n: print(i, *n, sep=',')\" > large.csv");
    auto const result = runWithDisk(session, "matrices", R"(
cubes import small.csv Base/1/1/1/1 >/dev/null
cubes import large.csv Base/1/1/1/1; echo $?
cubes import large.csv Base/1/1/1/2; echo $?
cubes import large.csv New/1/1/1/1; echo $?
ls matrices
cubes cell Base/1/1/1/1 2 2
cubes list
)");
    EXPECT_EQ(result.output, "3\n3\n3\n1-1-1-1-1.odm\n4\nnumber  name  entries\n     1  Base        1\n");
    EXPECT_NE(result.errors.find("cannot import large.csv into New/1/1/1/1: "), std::string::npos) << result.errors;
    EXPECT_NE(result.errors.find("2-1-1-1-1.odm"), std::string::npos) << result.errors;
    EXPECT_NE(result.errors.find("No space left on device"), std::string::npos) << result.errors;
}

TEST_P(FullDisk, keepsTheOldFileOfAnExport) {
    ToolSession const session(backend());
    REQUIRE_MOUNT(session);
    session.makeProject();
    session.run("/usr/bin/python3 -c \"n = range(1, 401)\nprint(',' + ','.join(map(str, n)))\n"
                "for i in n: print(i, *n, sep=',')\" > large.csv");
    session.run("cubes import large.csv Base/1/1/1/1 && mkdir disk");
    auto const result = runWithDisk(session, "disk", R"(
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

TEST_P(FullDisk, leavesNothingOfANewProject) {
    ToolSession const session(backend());
    REQUIRE_MOUNT(session);
    auto const result = runWithDisk(session, ". && cd .", R"(
head -c 10M /dev/zero > filler 2>/dev/null
cubes init city; echo $?
ls
)");
    EXPECT_EQ(result.output, "3\nfiller\n");
    EXPECT_NE(result.errors.find("cannot make a project in city"), std::string::npos) << result.errors;
}

}
