// One project on two platforms: the tool of one opens, reads and extends what the tool of the other has created.

#include "ToolSession.h"

#include "support/Required.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <optional>

namespace {

using namespace cubes::test;
namespace fs = std::filesystem;

constexpr char const* here = "cubes";
constexpr char const* linux = "'" CUBES_LINUX_TOOL "'";

struct Direction {
    char const* name;
    char const* maker;
    char const* other;
};
std::vector<Direction> const directions = {Direction{"fromLinux", linux, here}, Direction{"fromWindows", here, linux}};

void requireLinuxTool() {
    if (fs::exists(CUBES_LINUX_TOOL)) return;
    if (everythingIsRequired()) FAIL() << "no tool for Linux: " CUBES_LINUX_TOOL;
    GTEST_SKIP() << "SKIPPED: no tool for Linux: " CUBES_LINUX_TOOL
                    "; run: cmake --preset release && cmake --build --preset release --target cubes_tool routeprovider "
                    "vlinterfaceutilities";
}

/// The line with that tool in place of "cubes", run in the project's directory.
std::string with(std::string const& tool, std::string line) {
    for (auto at = line.find("cubes "); at != std::string::npos; at = line.find("cubes ", at + tool.size()))
        line.replace(at, 5, tool);
    return "cd delta && " + line;
}

/// A trip table, routes and route data, as another program might write them.
void writeSources(ToolSession const& session) {
    session.write("delta/trips.csv", ",10,20,30\n10,0,1.5,2\n20,3,0,0.1\n30,1e7,5,0\n");
    session.write("delta/routes.csv",
        "origin,destination,route,sequence,link,share\n10,20,1,1,7,0.75\n10,20,1,2,8,0.75\n"
        "10,20,2,1,9,0.25\n30,10,1,1,8,1\n");
    session.write("delta/data.csv", "route,length:float,tolled:boolean\n0,5.5,1\n1,7.25,0\n2,0.1,0\n");
}

// Commands that create one of everything that a project can hold, one per line.
constexpr std::array making = {
    "cubes import trips.csv 'Base \xC3\xBC/1/1/1/1'",
    "cubes import trips.csv fare/1/1/1/1",
    "cubes import trips.csv skim/1/1/1/1/1/1",
    "cubes parent skim/1/1/1/1/1/1 1/1/1/1/1",
    "cubes routes import routes.csv routes/1/1/1/1/1/1",
    "cubes parent routes/1/1/1/1/1/1 1/1/1/1/1",
    "cubes routes import data.csv routedata/1/1/1/1/1/1",
    "cubes routes select routes/1/1/1/1/1/1 8 1/1/1/1/1 selectedlink/1/1/1/1/1/1",
    "cubes use fare/1/1/1/1 +1",
};

// Commands that read it.
constexpr std::array reading = {
    "cubes list",
    "cubes entries",
    "cubes entries fare --json",
    "cubes show 1/1/1/1/1 --json",
    "cubes cell 1/1/1/1/1 30 10",
    "cubes tree 1/1/1/1/1",
    "cubes parent selectedlink/1/1/1/1/1/1",
    "cubes use fare/1/1/1/1",
    "cubes show skim/1/1/1/1/1/1",
    "cubes routes show routes/1/1/1/1/1/1 --od 10 20",
    "cubes routes show routes/1/1/1/1/1/1 --link 8 --json",
    "cubes routes fields routedata/1/1/1/1/1/1",
    "cubes export 1/1/1/1/1 out.csv && cat out.csv",
    "cubes export selectedlink/1/1/1/1/1/1 out.csv && cat out.csv",
    "cubes routes export routes/1/1/1/1/1/1 out.csv && cat out.csv",
    "cubes routes export routedata/1/1/1/1/1/1 out.csv && cat out.csv",
};

// Commands with which the other tool continues. Copies have the same content, and their own key in the index record.
constexpr std::array goingOn = {
    "cubes copy 1/1/1/1/1 1/1/1/1/2",
    "cubes export 1/1/1/1/1 out.csv && cubes export 1/1/1/1/2 copy.csv && cmp out.csv copy.csv",
    "cubes copy routes/1/1/1/1/1/1 routes/1/1/1/1/1/2",
    "cubes routes export routes/1/1/1/1/1/1 out.csv && cubes routes export routes/1/1/1/1/1/2 copy.csv && "
    "cmp out.csv copy.csv",
    "cubes move skim/1/1/1/1/1/1 skim/2/2/2/2/2/2",
    "cubes import trips.csv 'Plan/1/1/1/1'",
    "cubes use fare/1/1/1/1 -1",
    "cubes remove fare/1/1/1/1",
};

// Everything that an independent reader finds in the files.
constexpr char const* contentOfAll = R"(
import glob, h5py, sys
def tell(name, item):
    values = item[()].tolist() if isinstance(item, h5py.Dataset) else ''
    print(' ', name, getattr(item, 'compression', ''), sorted((key, str(item.attrs[key])) for key in item.attrs), values)
for path in sorted(glob.glob(sys.argv[1] + '/delta/*/**/*.*', recursive=True)):
    print(path[len(sys.argv[1]):])
    with h5py.File(path) as file:
        tell('/', file)
        file.visititems(tell)
)";

using Parameters = std::tuple<Backend, Direction, char const*>;

class CrossPlatform : public testing::TestWithParam<Parameters> {
protected:
    void SetUp() override {
        requireBackend(backend());
        if (!IsSkipped() && !HasFatalFailure()) requireLinuxTool();
        if (IsSkipped() || HasFatalFailure()) return;
        session_.emplace(backend());
    }

    Backend backend() const { return std::get<Backend>(GetParam()); }
    Direction direction() const { return std::get<Direction>(GetParam()); }

    /// By default an SQLite database is in the project's directory.
    std::string init(std::string const& tool) const {
        std::string const database = backend() == Backend::postgres ? " --database \"$DATABASE\"" : "";
        return tool + " init delta --storage " + std::get<char const*>(GetParam()) + database;
    }
    void make(ToolSession const& session, std::string const& tool) const {
        succeeds(session, init(tool));
        // Equal matrices make equal files in directories with the same identity.
        for (auto const* directory : {"matrices", "results"})
            session.write("delta/" + std::string(directory) + "/cubes-id", "0123456789abcdef0123456789abcdef\n");
        writeSources(session);
        for (auto const* line : making) succeeds(session, with(tool, line));
    }
    static void succeeds(ToolSession const& session, std::string const& line) {
        auto const result = session.run(line);
        ASSERT_EQ(result.exitCode, 0) << line << "\n" << result.errors;
    }
    static std::string read(ToolSession const& session, std::string const& tool) {
        std::string text;
        for (auto const* line : reading) text += "$ " + std::string(line) + "\n" + session.shown(with(tool, line));
        return text;
    }
    static std::string content(ToolSession const& session) {
        auto const result = runPython(contentOfAll, {session.directory()});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return result.output;
    }
    /// The rows that an independent client finds.
    std::string rows(ToolSession const& session) const {
        std::string const numbers = "purpose, mode, time, \"user\"";
        std::string const results = "result, iteration, filename, parentcubenr, parentpurpose, parentresult";
        return joined(sql(session, "select cubenr, name from cube order by cubenr")) +
               joined(sql(session, "select cubenr, " + numbers + ", filename, \"usageCounter\" from " +
                                       table(session, "public", "cube4data1") + " order by 1, 2, 3, 4, 5")) +
               joined(sql(session, "select cubenr, " + numbers + ", " + results + " from " +
                                       table(session, "delta", "cube5data1") + " order by 1, 2, 3, 4, 5, 6, 7"));
    }

    std::optional<ToolSession> session_;

private:
    Rows sql(ToolSession const& session, std::string const& text) const {
        if (backend() == Backend::postgres) return session.database().sql(text);
        auto const result =
            run({"sqlite3", "-batch", "-bail", "-nullvalue", "NULL", session.file("delta/cubes.db"), text});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return {{result.output}};
    }
    std::string table(ToolSession const& session, std::string const& schema, std::string const& name) const {
        return session.database().table(schema, name);
    }
};

/// The bytes of all files of one of these kinds, with their paths in the session.
std::string bytesOf(ToolSession const& session, std::vector<std::string> const& extensions) {
    std::map<std::string, std::string> files;
    for (auto const& entry : fs::recursive_directory_iterator(session.directory()))
        if (std::count(extensions.begin(), extensions.end(), entry.path().extension().string()))
            files[fs::relative(entry.path(), session.directory()).generic_string()] = readFile(entry.path().string());
    std::string text;
    for (auto const& [file, bytes] : files) text += file + "\n" + bytes + "\n";
    return text;
}

std::vector<std::string> const matrices = {".odm", ".frs", ".skm", ".slm"};
std::vector<std::string> const everything = {".odm", ".frs", ".skm", ".slm", ".FDB", ".toml"};

std::string nameOf(testing::TestParamInfo<Parameters> const& info) {
    auto const& [backend, direction, storage] = info.param;
    return std::string(direction.name) + "_" + storage + "_" + backendName(backend);
}

auto combined(std::vector<Direction> const& chosen) {
    return testing::Combine(testing::Values(Backend::sqlite, Backend::postgres), testing::ValuesIn(chosen),
        testing::Values("plain", "deflate"));
}

INSTANTIATE_TEST_SUITE_P(, CrossPlatform, combined(directions), nameOf);

// Neither direction differs from the other here.
class SameProject : public CrossPlatform {};
INSTANTIATE_TEST_SUITE_P(, SameProject, combined({directions.front()}), nameOf);

TEST_P(CrossPlatform, isReadByTheOtherToolAndNotChanged) {
    auto const [name, maker, other] = direction();
    make(*session_, maker);
    auto const asMade = read(*session_, maker);
    EXPECT_NE(asMade.find("Base \xC3\xBC"), std::string::npos) << asMade;
    EXPECT_EQ(asMade.find("\n! "), std::string::npos) << asMade;
    auto const files = bytesOf(*session_, everything);
    auto const rowsAsMade = rows(*session_);
    EXPECT_EQ(read(*session_, other), asMade);
    EXPECT_EQ(bytesOf(*session_, everything), files);
    EXPECT_EQ(rows(*session_), rowsAsMade);
}

TEST_P(CrossPlatform, isExtendedByTheOtherTool) {
    auto const [name, maker, other] = direction();
    make(*session_, maker);
    for (auto const* line : goingOn) succeeds(*session_, with(other, line));
    EXPECT_EQ(session_->shown(with(maker, "cubes list")), session_->shown(with(other, "cubes list")));
    for (auto const* line : {"cubes entries --json", "cubes tree skim/2/2/2/2/2/2", "cubes cell Plan/1/1/1/1 20 30",
             "cubes routes show routes/1/1/1/1/1/2 --link 8", "cubes show 1/1/1/1/2"}) {
        auto const seen = session_->shown(with(maker, line));
        EXPECT_EQ(seen, session_->shown(with(other, line))) << line;
        EXPECT_EQ(seen.find("! "), std::string::npos) << line << "\n" << seen;
    }
    auto const found = content(*session_);
    for (auto const* file :
        {"/1-1-1-1-1.odm", "/1-1-1-1-2.odm", "/2-1-1-1-1.odm", "/2-2-2-2-2-2.skm", "/1-1-1-1-1-2.FDB"})
        EXPECT_NE(found.find(file), std::string::npos) << found;
    EXPECT_NE(found.find("[10000000.0, 5.0, 0.0]"), std::string::npos) << found;
}

TEST_P(SameProject, isCreatedByBothTools) {
    auto const [name, maker, other] = direction();
    ToolSession const theirs(backend());
    make(*session_, maker);
    make(theirs, other);
    EXPECT_EQ(listing(theirs.directory()), listing(session_->directory()));
    // Route files record the time of their creation.
    EXPECT_EQ(bytesOf(theirs, matrices), bytesOf(*session_, matrices));
    EXPECT_EQ(rows(theirs), rows(*session_));
    EXPECT_EQ(read(theirs, other), read(*session_, maker));
    EXPECT_EQ(content(theirs), content(*session_));
    EXPECT_EQ(theirs.shown("cat delta/cubes.toml"), session_->shown("cat delta/cubes.toml"));
}

}
