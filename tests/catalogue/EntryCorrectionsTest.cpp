// Unusual rows, names and connections, in four-key cubes and six-key results.

#include <cubes/database/TRkDatabaseException.h>
#include <cubes/varcubes/TRkSkimCube.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>

#include "catalogue/CatalogueTest.h"
#include "support/ChildTask.h"
#include "support/EntryFamily.h"
#include "support/TestServer.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class UnusualEntry : public EntriesTest {
protected:
    /// Makes the database keep every row without an error.
    void suppressDeletions() {
        if (backend() == Backend::sqlite) {
            execute("create trigger keep before delete on " + table() + " begin select raise(ignore); end");
            return;
        }
        execute("create function keep() returns trigger language plpgsql as 'begin return null; end'");
        execute("create trigger keep before delete on " + table() + " for each row execute function keep()");
    }
};

CUBES_BOTH_FAMILIES(UnusualEntry);

// In a process of its own, since it might never return.
template <Family family>
void clearWithAnError(int, std::string const& root) {
    endThisProcessAfter(std::chrono::seconds(20));
    Project const own = Project::open(root);
    try {
        entryFamily(family, own.settings())->clearAll();
    } catch (TRkDatabaseException const&) {
        return;
    }
    throw std::runtime_error("no database error");
}

ChildTask const clearing[] = {{"clearing four-key cubes", clearWithAnError<Family::fourKeys>},
    {"clearing results", clearWithAnError<Family::results>}};

int clearsWithAnError(Family family, std::string const& root) {
    return clearing[family == Family::fourKeys ? 0 : 1].inProcesses(1, root);
}

TEST_P(UnusualEntry, thatATriggerPreservesEndsClearingWithADatabaseError) {
    entries().add(1);
    suppressDeletions();
    EXPECT_EQ(clearsWithAnError(GetParam().family, project().root()), 1);
    EXPECT_EQ(rows(), row(1));
}

TEST_P(UnusualEntry, withNullInItsKeyEndsClearingWithADatabaseError) {
    if (backend() == Backend::postgres) GTEST_SKIP() << "SKIPPED: a primary key of PostgreSQL holds no null";
    std::string columns;
    for (auto const& column : entries().keyColumns()) columns += (columns.empty() ? "\"" : ", \"") + column + "\"";
    defineTable("\"usageCounter\" smallint, filename varchar(255), ", "primary key (" + columns + ")");
    entries().add(1);
    execute("update " + table() + " set " + lastColumn() + " = null");
    EXPECT_EQ(clearsWithAnError(GetParam().family, project().root()), 1);
    EXPECT_EQ(read("select count(*) from " + table()), "1\n");
}

TEST_P(UnusualEntry, ofANameThatStaysInsideTheDirectoryIsUsable) {
    fs::create_directory(pathOf("d"));
    struct {
        char const* stored;
        char const* file;
    } const names[] = {{"./a", "a"}, {".\\a", "a"}, {"d//a", "d/a"}, {"d\\\\a", "d/a"}, {"d/./a", "d/a"},
        {"d/../a", "a"}, {"x/../d/a", "d/a"}};
    for (auto const& [stored, file] : names) {
        SCOPED_TRACE(stored);
        entries().store(1, 5);
        fs::rename(path(1), pathOf(file));
        name(1, stored);
        EXPECT_TRUE(entries().fileName(1) != "" && fs::equivalent(entries().fileName(1), pathOf(file)));
        EXPECT_EQ(entries().first(1), 5.0);
        EXPECT_TRUE(entries().clear(1));
        EXPECT_FALSE(fs::exists(pathOf(file)));
    }
    entries().add(1);
    name(1, "d/");
    fs::path const found = entries().fileName(1);
    ASSERT_FALSE(found.empty());
    EXPECT_TRUE(fs::equivalent(found.has_filename() ? found : found.parent_path(), pathOf("d")));
}

TEST_P(UnusualEntry, ofANameThatIsEmptyWhenNormalisedCountsAsNameless) {
    fs::create_directory(pathOf("d"));
    writeFile(pathOf("d/kept"), "precious");
    for (char const* const stored : {"", ".", "./", ".\\", "./.", "d/..", "d/../.", "d\\.."}) {
        SCOPED_TRACE(stored);
        entries().add(1);
        name(1, stored);
        EXPECT_EQ(entries().fileName(1), "");
        EXPECT_EQ(entries().get(1, lsRead), nullptr);
        EXPECT_TRUE(entries().clear(1));
        EXPECT_EQ(files(), "d\nd/kept\n");
    }
}

TEST_P(UnusualEntry, ofANameThatLeadsOutOfTheDirectoryIsNeverUsed) {
    std::string const outside = pathOf("../outside");
    writeFile(outside, "precious");
    for (char const* const stored :
        {"..", "../outside", "d/../../outside", "./../outside", "..\\outside", "/outside"}) {
        SCOPED_TRACE(stored);
        entries().add(1);
        name(1, stored);
        EXPECT_EQ(entries().fileName(1), "");
        EXPECT_TRUE(entries().clear(1));
        EXPECT_EQ(readFile(outside), "precious");
    }
}

TEST(UnusualResult, isCopiedAndMovedOntoItsOwnKeyWithoutSettingsTableOrDirectory) {
    TRkSkimCube cube(nullptr, true);
    TRkSkimCube const other(nullptr, true);
    for (bool const failIfExists : {false, true})
        for (bool const zeroBased : {false, true}) {
            EXPECT_TRUE(cube.Copy(1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6, failIfExists, zeroBased));
            EXPECT_TRUE(cube.Move(1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6, failIfExists, zeroBased));
        }
    EXPECT_FALSE(cube.Copy(1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 7, false, false));
    EXPECT_FALSE(cube.Move(1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 7, false, false));
    EXPECT_FALSE(cube.Copy(other, 1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 7, false, false));
}

// A missing table of results opens as an empty cursor; a lost server is an error.
TEST(LostServer, postgresIsADatabaseErrorOfEveryOperationThatNamesTheServer) {
    requireBackend(Backend::postgres);
    if (testing::Test::IsSkipped() || testing::Test::HasFatalFailure()) return;
    TestServer server;
    TempDir const directory;
    ProjectOptions options;
    options.database = server.url();
    Project const project = Project::create(directory.file("delta"), options);
    for (Family const family : {Family::fourKeys, Family::results}) {
        SCOPED_TRACE(family == Family::fourKeys ? "four-key cubes" : "results");
        auto const entries = entryFamily(family, project.settings());
        ASSERT_TRUE(entries->store(1, 1));
        // The description of the tables is read again afterwards, so that opening needs the server.
        project.connection()->Execute("ANALYZE");
        server.stop();
        for (auto const& operation : {std::function<void()>([&] { entries->open(); }), {[&] { entries->check(1); }},
                 {[&] { entries->add(2); }}, {[&] { entries->first(1); }}, {[&] { entries->clear(1); }}}) {
            try {
                operation();
                ADD_FAILURE() << "no error";
            } catch (TRkDatabaseException const& error) {
                EXPECT_NE(std::string(error.what()).find(":" + server.port() + "'"), std::string::npos) << error.what();
            }
        }
        server.start();
        EXPECT_EQ(entries->first(1), 1.0);
        entries->setSchema("nowhere");
        EXPECT_FALSE(entries->open());
    }
}

// In such a database the column counts bytes.
TEST(LongCubeName, postgresWithoutAnEncodingFindsItAsStored) {
    requireBackend(Backend::postgres);
    if (testing::Test::IsSkipped() || testing::Test::HasFatalFailure()) return;
    TestDatabase const database(Backend::postgres, "ENCODING 'SQL_ASCII' LOCALE 'C' TEMPLATE template0");
    TempDir const directory;
    ProjectOptions options;
    options.database = database.url();
    Project const project = Project::create(directory.file("delta"), options);
    TRkBaseCubes const cubes(project.settings(), nullptr, nullptr, ctMatrix, mtMatrixCube, mkDefault, false);
    std::string umlauts;
    for (int i = 0; i < 100; ++i) umlauts += "\xC3\xA4";
    for (std::string const& name : {std::string(200, 'x'), umlauts, "y" + umlauts}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(cubes.Add(name.c_str()));
        short const number = cubes.CubeNameToNr(name.c_str());
        EXPECT_GT(number, 0);
        EXPECT_TRUE(cubes.Add(name.c_str()));
        EXPECT_EQ(cubes.CubeNameToNr(cubes.CubeNrToName(number).c_str()), number);
    }
    EXPECT_EQ(joined(database.sql("select cubenr from cube order by 1")), "1\n2\n3\n");
}

}
}
