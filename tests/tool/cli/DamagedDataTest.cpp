// Files of a project, and files to import, that were damaged or changed by another program.

#include "ToolSession.h"

#include "support/Damage.h"

namespace {

using namespace cubes::test;

constexpr char const* damaged = "was changed outside Cubes or damaged";

class DamagedData : public testing::Test {
protected:
    DamagedData() {
        session.write("trips.csv", ",101,102,103\n101,0,100,40\n102,80,0,20\n103,60,10,0\n");
        session.write("routes.csv", "origin,destination,route,sequence,link,share\n101,103,1,1,10,0.75\n101,103,1,2,20,"
                                    "0.75\n101,103,2,1,15,0.25\n");
        session.write("times.csv", "route,time:float\n0,3.5\n1,4\n");
    }

    void makeProject() const {
        succeeds("cubes init project && cubes import trips.csv Base/1/1/1/1 --project project");
    }
    void succeeds(std::string const& line) const {
        auto const result = session.run(line);
        ASSERT_EQ(result.exitCode, 0) << line << "\n" << result.errors;
    }
    /// A command on damaged data fails, names the cause and changes nothing.
    void expectRefusal(std::string const& line, std::string const& cause) const {
        SCOPED_TRACE(line);
        auto const before = session.run("ls -R; cubes list --project project").output;
        auto const result = session.run(line);
        EXPECT_EQ(result.exitCode, 3) << result.output;
        EXPECT_EQ(result.output, "");
        EXPECT_NE(result.errors.find(cause), std::string::npos) << result.errors;
        EXPECT_EQ(session.run("ls -R; cubes list --project project").output, before);
    }

    ToolSession const session{Backend::sqlite};
    std::string const own = "project/matrices/1-1-1-1-1.odm";
};

constexpr char const* usesOfAMatrix[] = {
    "cubes show Base/1/1/1/1 --project project",
    "cubes export Base/1/1/1/1 out.csv --project project",
    "cubes export Base/1/1/1/1 out.omx --project project",
    "cubes copy Base/1/1/1/1 skim/1/1/1/1/2/0 --project project",
    "cubes move Base/1/1/1/1 skim/1/1/1/1/2/0 --project project",
    "cubes copy Base/1/1/1/1 Base/1/1/1/1 --from-project project --project other",
    "cubes move Base/1/1/1/1 Base/1/1/1/1 --from-project project --project other",
    "cubes import copy.omx Taken/1/1/1/1 --project project",
};

TEST_F(DamagedData, ofAMatrixIsRefusedByEveryCommandThatReadsAllOfIt) {
    makeProject();
    succeeds("cubes init other");
    damage(session.file(own), "table[0, 1] = 12.5");
    succeeds("cp " + own + " copy.omx");
    for (auto const* line : usesOfAMatrix) expectRefusal(line, damaged);
}

TEST_F(DamagedData, ofEachKindAndStorageIsFound) {
    makeProject();
    succeeds("cubes init packed --storage deflate && cubes import trips.csv Base/1/1/1/1 --project packed");
    succeeds("cp " + own + " plain.odm && cp packed/matrices/1-1-1-1-1.odm deflate.odm");
    for (std::string const storage : {"plain", "deflate"})
        for (Damage const& change : damages) {
            SCOPED_TRACE(storage + " " + change.name);
            succeeds("cp " + storage + ".odm " + own);
            damage(session.file(own), change.program);
            bool const isUnreadable = storage == "deflate" && change.name == std::string("byteOfTheElements");
            expectRefusal(
                "cubes show Base/1/1/1/1 --project project", isUnreadable ? "a compressed chunk is damaged" : damaged);
        }
}

TEST_F(DamagedData, isNamedWithItsCausesAndWhatToDo) {
    makeProject();
    damage(session.file(own), "table[0, 1] = 12.5");
    EXPECT_EQ(session.shown("cubes show Base/1/1/1/1 --project project"),
        "! cubes: cannot show Base/1/1/1/1: <DIR>/project/matrices/1-1-1-1-1.odm was changed outside Cubes or damaged: "
        "its "
        "content does not match its checksum; restore it, or accept the change with cubes import --ignore-checksum\n"
        "[3]\n");
    succeeds("cp " + own + " copy.omx");
    EXPECT_EQ(session.shown("cubes import copy.omx Base/1/1/1/1 --project project"),
        "! cubes: cannot import copy.omx into Base/1/1/1/1: table \"matrix\" was changed outside Cubes or damaged: its "
        "content does not match its checksum; restore it, or accept the change with cubes import --ignore-checksum\n"
        "[3]\n");
}

TEST_F(DamagedData, isAcceptedFromAnOmxFileOrTheProjectsOwn) {
    makeProject();
    damage(session.file(own), "table[0, 1] = 12.5");
    succeeds("cp " + own + " copy.omx");
    for (auto const& file : {std::string("copy.omx"), own}) {
        succeeds("cubes import " + file + " Base/1/1/1/1 --ignore-checksum --project project");
        EXPECT_EQ(session.run("cubes cell Base/1/1/1/1 101 102 --project project").output, "12.5\n");
        succeeds("cubes show Base/1/1/1/1 --project project");
    }
}

TEST_F(DamagedData, withoutAChecksumIsTheFileOfAnotherProgram) {
    makeProject();
    damage(session.file("project/matrices/1-1-1-1-1.odm"),
        "table[0, 1] = 12.5; del table.attrs['cubes_content']; del f['cubes_index']");
    succeeds("cubes show Base/1/1/1/1 --project project");
}

TEST_F(DamagedData, isOnlyFoundWhereAllOfItIsRead) {
    makeProject();
    damage(session.file(own), "table[0, 1] = 12.5");
    EXPECT_EQ(session.run("cubes cell Base/1/1/1/1 101 102 --project project").output, "12.5\n");
    succeeds("cubes copy Base/1/1/1/1 Base/1/1/1/2 --project project");
    expectRefusal("cubes show Base/1/1/1/2 --project project", damaged);
}

struct RouteUse {
    char const* entry;
    char const* file;
    /// By another program, and by a bad disk.
    char const* change;
    char const* flip;
    std::vector<std::string> lines;
};

RouteUse const routeUses[] = {
    {"routes/1/1/1/1/1/0", "RouteStorage_Routes/1-1-1-1-1-0.FDB", "f['shares'][0] = 0.5",
        "flip(f['shares'].id.get_chunk_info(0).byte_offset + 2)",
        {"cubes routes show ENTRY --project project", "cubes routes show ENTRY --link 10 --project project",
            "cubes routes export ENTRY out.csv --project project",
            "cubes routes select ENTRY 10 Base/1/1/1/1 selectedlink/1/1/1/1/1/0 --project project",
            "cubes copy ENTRY ENTRY --from-project project --project other",
            "cubes move ENTRY ENTRY --from-project project --project other"}},
    {"routedata/1/1/1/1/1/0", "RouteStorage_RouteData/1-1-1-1-1-0.FDB", "f['fields/0000'][0] = 9",
        "flip(f['fields/0000'].id.get_chunk_info(0).byte_offset + 2)",
        {"cubes routes show ENTRY --project project", "cubes routes fields ENTRY --project project",
            "cubes routes export ENTRY out.csv --project project",
            "cubes copy ENTRY ENTRY --from-project project --project other",
            "cubes move ENTRY ENTRY --from-project project --project other"}},
};

TEST_F(DamagedData, ofRoutesIsRefusedByEveryCommandThatReadsThem) {
    succeeds("cubes init other");
    makeProject();
    for (RouteUse const& use : routeUses)
        for (bool const byAProgram : {true, false}) {
            std::string const entry = use.entry;
            succeeds("cubes routes import " + std::string(entry.starts_with("routes/") ? "routes" : "times") + ".csv " +
                     entry + " --project project");
            damage(session.file(std::string("project/results/") + use.file), byAProgram ? use.change : use.flip);
            for (std::string line : use.lines) {
                for (auto at = line.find("ENTRY"); at != std::string::npos; at = line.find("ENTRY"))
                    line.replace(at, std::string("ENTRY").size(), entry);
                expectRefusal(line, byAProgram ? "it was changed outside Cubes or damaged" : "1-1-1-1-1-0.FDB");
            }
            auto const checked = session.run("cubes check --deep --project project");
            EXPECT_EQ(checked.exitCode, 1);
            EXPECT_NE(checked.output.find("error     wrongContent  " + entry), std::string::npos) << checked.output;
        }
}

}
