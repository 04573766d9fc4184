// Lineage in rows that another program wrote, and after transfers that fail.

#include "ToolSession.h"

#include <filesystem>
#include <optional>

namespace {

using namespace cubes::test;

/// A project "delta" with three skims, each derived from the one before, the first from a trip table.
class LineageSession : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        session_.emplace(backend());
        session_->write("m.csv", ",1,2\n1,1,2\n2,3,4\n");
        succeeds("cubes init delta --database \"$DATABASE\"");
        succeeds(cubes("import m.csv Base/1/1/1/1"));
        for (char const* const iteration : {"1", "2", "3"})
            succeeds(cubes("import m.csv skim/1/1/1/1/1/" + std::string(iteration)));
        succeeds(cubes("parent skim/1/1/1/1/1/1 Base/1/1/1/1"));
        succeeds(cubes("parent skim/1/1/1/1/1/2 skim/1/1/1/1/1/1"));
        succeeds(cubes("parent skim/1/1/1/1/1/3 skim/1/1/1/1/1/2"));
    }

    static std::string cubes(std::string const& arguments) { return "cubes " + arguments + " --project delta"; }
    void succeeds(std::string const& line) const {
        auto const result = session_->run(line);
        ASSERT_EQ(result.exitCode, 0) << line << "\n" << result.errors;
    }
    std::string output(std::string const& arguments) const { return session_->run(cubes(arguments)).output; }
    std::string errors(std::string const& arguments) const { return session_->run(cubes(arguments)).errors; }
    int exitCode(std::string const& arguments) const { return session_->run(cubes(arguments)).exitCode; }
    std::string file(std::string const& name) const { return session_->file("delta/results/" + name); }
    /// Sets the parent of the skim of that iteration directly in the database.
    void setParent(int iteration, std::string const& assignments) const {
        session_->database().execute("update " + session_->database().table("delta", "cube5data1") + " set " +
                                     assignments + " where iteration = " + std::to_string(iteration));
    }

    std::optional<ToolSession> session_;
};

CUBES_BOTH_BACKENDS(LineageSession);

constexpr char const* parentOne = "parentcubenr = -1, parentpurpose = 1, parentmode = 1, parenttime = 1, "
                                  "parentuser = 1, parentresult = 1, parentiteration = ";

TEST_P(LineageSession, isPrintedFromTheOldestAncestor) {
    EXPECT_EQ(output("tree skim/1/1/1/1/1/2"), "  Base/1/1/1/1\n    skim/1/1/1/1/1/1\n*     skim/1/1/1/1/1/2\n"
                                               "        skim/1/1/1/1/1/3\n");
}

TEST_P(LineageSession, endsAtACycle) {
    setParent(1, parentOne + std::string("3"));
    EXPECT_EQ(output("tree skim/1/1/1/1/1/2"), "  skim/1/1/1/1/1/3\n    skim/1/1/1/1/1/1\n*     skim/1/1/1/1/1/2\n");
    setParent(2, parentOne + std::string("2"));
    EXPECT_EQ(output("children skim/1/1/1/1/1/2"), "entry             file\n" + std::string("skim/1/1/1/1/1/2  ") +
                                                       file("1-1-1-1-1-2.skm") + "\nskim/1/1/1/1/1/3  " +
                                                       file("1-1-1-1-1-3.skm") + "\n");
    EXPECT_EQ(exitCode("parent skim/1/1/1/1/1/3 skim/1/1/1/1/1/1"), 1);
}

TEST_P(LineageSession, reportsParentsThatAreNotEntries) {
    struct {
        char const* assignments;
        char const* parent;
    } const cases[] = {
        {"parentcubenr = -1, parentresult = null, parentiteration = null", "-1/1/1/1/1"},
        {"parentcubenr = 1", "1/1/1/1/1/1/2"},
        {"parentcubenr = 77, parentresult = -1, parentiteration = -1", "77/1/1/1/1"},
        {"parentcubenr = null", "0/1/1/1/1/1/2"},
    };
    for (auto const& [assignments, parent] : cases) {
        setParent(3, parentOne + std::string("2"));
        setParent(3, assignments);
        auto const tree = "  " + std::string(parent) + "  (missing)\n*   skim/1/1/1/1/1/3\n";
        EXPECT_EQ(output("tree skim/1/1/1/1/1/3"), tree) << assignments;
        EXPECT_NE(output("parent skim/1/1/1/1/1/3").find("parent  " + std::string(parent) + "\n"), std::string::npos)
            << assignments;
    }
    // A key without one of its first parts names no entry.
    setParent(3, "parentcubenr = -1, parentpurpose = null");
    EXPECT_EQ(output("tree skim/1/1/1/1/1/3"), "* skim/1/1/1/1/1/3\n");
}

TEST_P(LineageSession, findsTheChildrenOfARemovedCube) {
    EXPECT_NE(
        errors("remove Base").find("results that still have an entry of Base as their parent: 1\n"), std::string::npos);
    EXPECT_EQ(output("tree 1/1/1/1/1"), "* 1/1/1/1/1  (missing)\n    skim/1/1/1/1/1/1\n      skim/1/1/1/1/1/2\n"
                                        "        skim/1/1/1/1/1/3\n");
    EXPECT_NE(output("children 1/1/1/1/1").find("skim/1/1/1/1/1/1"), std::string::npos);
    EXPECT_EQ(exitCode("tree 2/1/1/1/1"), 1);
}

TEST_P(LineageSession, isPrintedWithUnchangedNames) {
    std::string const name = R"(a "b" \c ü)";
    succeeds(cubes("import m.csv '" + name + "/1/1/1/1'"));
    succeeds(cubes("parent skim/1/1/1/1/1/1 '" + name + "/1/1/1/1'"));
    EXPECT_NE(output("tree --dot skim/1/1/1/1/1/1").find(R"("a \"b\" \\c ü/1/1/1/1" -> "skim/1/1/1/1/1/1")"),
        std::string::npos);
}

TEST_P(LineageSession, namesCubesByNumberWhenTheirNamesAreAmbiguous) {
    int number = 60;
    for (char const* const name : {"skim/1/1", "2030", "fare"})
        session_->database().execute(
            "insert into cube (cubenr, name) values (" + std::to_string(number++) + ", '" + name + "')");
    for (std::string const cube : {"60", "61", "62"}) {
        EXPECT_EQ(output("copy Base/1/1/1/1 " + cube + "/1/1/1/1").find("from  Base/1/1/1/1\nto    " + cube), 0u);
        EXPECT_EQ(exitCode("show " + cube + "/1/1/1/1"), 0);
    }
    for (char const* const name : {"skim/x", "fare/x/y", "17", "-3", "skim"})
        EXPECT_EQ(session_->run("cubes add --project delta -- " + std::string(name)).exitCode, 1) << name;
}

TEST_P(LineageSession, isKeptByAMovedResultAndNotByACopy) {
    succeeds(cubes("move skim/1/1/1/1/1/1 transit/1/1/1/1/1/1"));
    EXPECT_EQ(output("tree transit/1/1/1/1/1/1"), "  Base/1/1/1/1\n*   transit/1/1/1/1/1/1\n");
    succeeds(cubes("copy transit/1/1/1/1/1/1 skim/1/1/1/1/1/3"));
    EXPECT_EQ(output("tree skim/1/1/1/1/1/3"), "* skim/1/1/1/1/1/3\n");
    succeeds(cubes("copy Base/1/1/1/1 skim/1/1/1/1/1/2"));
    EXPECT_EQ(output("tree skim/1/1/1/1/1/2"), "* skim/1/1/1/1/1/2\n");
}

// A directory in place of a file makes a copy fail.
TEST_P(LineageSession, isUnchangedWhenATransferFails) {
    std::filesystem::remove(file("1-1-1-1-1-1.skm"));
    std::filesystem::create_directory(file("1-1-1-1-1-1.skm"));
    writeFile(file("1-1-1-1-1-9.skm"), "of nobody");
    writeFile(file(".cubes-lock"), "");
    auto const before = session_->state();
    for (char const* const to : {"skim/1/1/1/1/1/3", "skim/1/1/1/1/1/8", "skim/1/1/1/1/1/9", "path/1/1/1/1/1/1"}) {
        EXPECT_EQ(exitCode("copy skim/1/1/1/1/1/1 " + std::string(to)), 3) << to;
        EXPECT_EQ(session_->state(), before) << to;
    }
    auto const found = errors("copy skim/1/1/1/1/1/1 skim/1/1/1/1/1/3");
    EXPECT_NE(found.find("cannot copy skim/1/1/1/1/1/1 to skim/1/1/1/1/1/3: "), std::string::npos) << found;
    EXPECT_NE(found.find("1-1-1-1-1-1.skm"), std::string::npos) << found;
}

// Each matrix is large enough for the two processes to overlap.
TEST_P(LineageSession, isConsistentWhenTwoProcessesCopyToOneEntry) {
    session_->run("/usr/bin/python3 -c \"n = range(1, 301)\nprint(',' + ','.join(map(str, n)))\n"
                  "for i in n: print(i, *n, sep=',')\" > large.csv");
    succeeds(cubes("import large.csv Large/1/1/1/1"));
    for (int round = 1; round <= 8; ++round) {
        auto const target = "Copy" + std::to_string(round) + "/1/1/1/1";
        auto const copying = cubes("copy Large/1/1/1/1 " + target) + " >/dev/null 2>&1";
        session_->run("{ " + copying + " & " + copying + " & wait; }");
        EXPECT_EQ(output("cell " + target + " 300 299"), "299\n") << round;
    }
}

TEST_P(LineageSession, ofACubeIsNotClearedTwiceByTwoProcesses) {
    for (int entry = 1; entry <= 20; ++entry) succeeds(cubes("copy Base/1/1/1/1 Much/1/1/1/" + std::to_string(entry)));
    auto const clearing = cubes("clear Much --json") + " 2>&1";
    auto const both = session_->run("{ " + clearing + " > a & " + clearing + " > b & wait; cat a b; }").output;
    EXPECT_EQ(both.find("cannot clear"), std::string::npos) << both;
    EXPECT_EQ(output("entries Much --json"), "[]\n");
}

TEST_P(LineageSession, isRemovedAsAWhole) {
    succeeds(cubes("use skim/1/1/1/1/1/3 +1"));
    EXPECT_EQ(exitCode("remove skim/1/1/1/1/1/1 --with-children"), 1);
    EXPECT_EQ(output("tree skim/1/1/1/1/1/3").find("missing"), std::string::npos);
    succeeds(cubes("use skim/1/1/1/1/1/3 -1"));
    EXPECT_EQ(output("remove skim/1/1/1/1/1/2 --with-children"), "removed  skim/1/1/1/1/1/2\nentries  2\n");
    EXPECT_EQ(output("tree Base/1/1/1/1"), "* Base/1/1/1/1\n    skim/1/1/1/1/1/1\n");
    setParent(1, parentOne + std::string("1"));
    EXPECT_EQ(output("remove skim/1/1/1/1/1/1 --with-children"), "removed  skim/1/1/1/1/1/1\nentries  1\n");
    EXPECT_EQ(exitCode("remove Base --with-children"), 2);
}

TEST_P(LineageSession, printsTheUsageCounterAndProtectsEntriesInUse) {
    EXPECT_EQ(output("use skim/1/1/1/1/1/1"), "entry  skim/1/1/1/1/1/1\nusers  0\n");
    succeeds(cubes("use skim/1/1/1/1/1/1 +1"));
    EXPECT_EQ(output("use skim/1/1/1/1/1/1"), "entry  skim/1/1/1/1/1/1\nusers  1\n");
    EXPECT_NE(errors("remove skim/1/1/1/1/1/1").find(": it is in use; try again later"), std::string::npos);
    // An entry in use can be copied as a result, but not read.
    succeeds(cubes("copy skim/1/1/1/1/1/1 path/1/1/1/1/1/1"));
    EXPECT_EQ(exitCode("copy skim/1/1/1/1/1/1 Base/2/1/1/1"), 1);
}

}
