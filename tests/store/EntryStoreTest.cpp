#include <cubes/store/EntryStore.h>

#include <cubes/database/TPgConnection.h>
#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/project/Project.h>
#include <cubes/varcubes/TRkSkimCube.h>

#include <filesystem>
#include <fstream>

#include "host/platform/NarrowText.h"
#include "support/Backend.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

/// A small asymmetric matrix, recognisable by its first element.
TRkMatrix matrixOf(float first) {
    TRkMatrix made = TRkMatrix::inMemory(2, 3);
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 3; ++column)
            made.RowAt(row, 8)[column] = first + static_cast<float>(10 * row + column);
    return made;
}

float first(TRkMatrix const& matrix) {
    return matrix.Elements()[0];
}

class EntryStoreTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        project_ = std::make_unique<TestProject>(backend());
        store().addCube("Trips");
    }

    TestProject& project() { return *project_; }
    EntryStore& store() { return project_->project().store(); }
    std::string schema() { return project().project().schema(); }

    std::string rowsOf(std::string const& table, std::string const& columns) {
        return joined(project().sql("select " + columns + " from " + table + " order by 1, 2, 3, 4, 5"));
    }
    std::string cubeRows() {
        return rowsOf(project().database().table("public", "cube4data1"),
            "cubenr, purpose, mode, time, \"user\", \"usageCounter\", filename");
    }
    std::string resultRows() {
        return rowsOf(project().database().table(schema(), "cube5data1"),
            "cubenr, purpose, mode, time, \"user\", result, iteration, \"usageCounter\", filename, parentcubenr, "
            "parentpurpose, parentresult");
    }
    std::string path(EntryKey const& key) { return store().find(key).value().file; }

    std::string resultKeys() {
        return joined(project().sql("select cubenr from " + project().database().table(schema(), "cube5data1")));
    }
    static std::vector<EntryKey> keysOf(EntryStore& store, std::string const& cube) {
        std::vector<EntryKey> keys;
        for (auto const& entry : store.entries({.cube = cube})) keys.push_back(entry.key);
        return keys;
    }
    static std::string messageOf(std::function<void()> const& work) {
        try {
            work();
        } catch (StoreError const& error) {
            return error.what();
        }
        return "nothing was thrown";
    }
    static std::string reasonOf(std::function<void()> const& work) {
        try {
            work();
        } catch (StoreError const& error) {
            return nameOf(error.reason());
        }
        return "nothing was thrown";
    }

    EntryKey const trips_{1, 1, 1, 1, 1};
    EntryKey const other_{1, 2, 1, 1, 1};
    EntryKey const skim_{-1, 1, 1, 1, 1, 2, 0};
    EntryKey const routes_{-9, 1, 1, 1, 1, 1, 0};

private:
    std::unique_ptr<TestProject> project_;
};

CUBES_BOTH_BACKENDS(EntryStoreTest);

TEST_P(EntryStoreTest, convertsKeysToTextAndBack) {
    store().addCube("A/B");
    store().addCube("17");
    store().addCube("2030/1/15");
    struct Case {
        EntryKey key;
        char const* text;
    };
    Case const cases[] = {{{1, 1, 2, 3, 4}, "Trips/1/2/3/4"}, {{2, 1, 1, 1, 1}, "A/B/1/1/1/1"},
        {{3, 1, 1, 1, 1}, "3/1/1/1/1"}, {{99, 1, 1, 1, 1}, "99/1/1/1/1"}, {{-1, 1, 1, 1, 1}, "-1/1/1/1/1"},
        {{3, 1, 1, 1, 1, 1, 0}, "3/1/1/1/1/1/0"}, {{4, 1, 1, 1, 1}, "2030/1/15/1/1/1/1"},
        {{-8, 1, 1, 1, 1}, "fare/1/1/1/1"}, {{-1, 1, 2, 3, 4, 5, 0}, "skim/1/2/3/4/5/0"},
        {{-10, 1, 1, 1, 1, 1, 1}, "routedata/1/1/1/1/1/1"}};
    for (auto const& [key, text] : cases) {
        EXPECT_EQ(store().text(key), text);
        EXPECT_EQ(store().parse(text), key) << text;
    }
    EXPECT_THROW(store().parse("2030/01/15/1/1/1/1"), StoreError);
    EXPECT_EQ(store().parse("trips/1/2/3/4"), EntryKey(1, 1, 2, 3, 4));
    EXPECT_EQ(store().parse("-1/1/2/3/4/5/0"), EntryKey(-1, 1, 2, 3, 4, 5, 0));
}

TEST_P(EntryStoreTest, findsACubeByItsNumberThenByItsName) {
    EXPECT_EQ(store().addCube("2030"), 2);
    EXPECT_EQ(store().addCube("1"), 3);
    EXPECT_EQ(store().findCube("2030").value().number, 2);
    EXPECT_EQ(store().findCube("1").value().name, "Trips");
    EXPECT_FALSE(store().findCube("99"));
    store().put({2, 1, 1, 1, 1}, matrixOf(1));
    EXPECT_EQ(store().removeAll({.cube = "2030"}), 1u);
}

// Applications may register the kinds, and store entries of cubes that are in no register.
TEST_P(EntryStoreTest, selectsWhatApplicationsStoredByTheNumberOfTheirCube) {
    project().execute("insert into " + project().database().table("public", "cube4data1") +
                      " (cubenr, purpose, mode, time, \"user\", filename) values (99, 1, 1, 1, 1, 'x.odm')");
    project().execute("insert into cube values (-1, 'SkimCube')");
    store().put(skim_, matrixOf(1));
    EXPECT_EQ(keysOf(store(), "99"), (std::vector<EntryKey>{{99, 1, 1, 1, 1}}));
    EXPECT_EQ(keysOf(store(), "SkimCube"), std::vector<EntryKey>{skim_});
    EXPECT_EQ(store().findCube("SkimCube").value().name, "skim");
    EXPECT_EQ(reasonOf([&] { store().addCube("SkimCube"); }), "invalidKey");
    EXPECT_EQ(store().removeAll({.cube = "99"}), 1u);
}

TEST_P(EntryStoreTest, refusesAnAncestorThatIsDerivedFromItsDescendant) {
    EntryKey const child{-2, 1, 1, 1, 1, 1, 0};
    EntryKey const grandchild{-2, 1, 1, 1, 1, 2, 0};
    store().put(skim_, matrixOf(1));
    store().put(child, matrixOf(2), {.parent = skim_});
    store().put(grandchild, matrixOf(3), {.parent = child});
    std::function<void()> const refused[] = {[&] { store().setParent(skim_, skim_); },
        [&] { store().setParent(skim_, grandchild); }, [&] { store().put(skim_, matrixOf(9), {.parent = grandchild}); },
        [&] { store().move(child, skim_); }, [&] { store().move(grandchild, skim_); },
        [&] { store().put(routes_, matrixOf(9), {.parent = routes_}); }};
    for (auto const& work : refused) EXPECT_EQ(reasonOf(work), "invalidKey");
    EXPECT_EQ(messageOf(refused[0]), "cannot set the parent of skim/1/1/1/1/2/0: an entry cannot be its own parent");
    EXPECT_EQ(messageOf(refused[1]),
        "cannot set the parent of skim/1/1/1/1/2/0: selectedlink/1/1/1/1/2/0 was derived from it");
    EXPECT_FALSE(store().parent(skim_));
    EXPECT_EQ(store().parent(child), skim_);
    EXPECT_EQ(first(store().get(skim_)), 1);
    EXPECT_EQ(store().lineage(skim_).descendants.size(), 2u);
}

TEST_P(EntryStoreTest, refusesNamesOfCubesThatNobodyCanType) {
    for (auto const& name : {std::string(), std::string("a\nb"), std::string("a\0b", 3), std::string("\x1b[1m")})
        EXPECT_EQ(reasonOf([&] { store().addCube(name); }), "invalidKey") << name;
    EXPECT_EQ(store().cubes().size(), 1u);
}

TEST_P(EntryStoreTest, selectsACubeByItsNumberWhateverItsName) {
    EXPECT_EQ(store().addCube("skim"), 2);
    store().put({2, 1, 1, 1, 1}, matrixOf(1));
    store().put(skim_, matrixOf(1));
    EXPECT_EQ(store().removeAll(EntrySelection{.cubeNumber = 2}), 1u);
    EXPECT_TRUE(store().find(skim_));
    EXPECT_EQ(store().removeAll(EntrySelection{.cubeNumber = -1}), 1u);
}

// Files are copied as they are. What they hold is then unknown, and the copy is complete all the same.
TEST_P(EntryStoreTest, copiesADamagedFileAndCanReplaceAndRemoveIt) {
    store().put(trips_, matrixOf(1));
    store().put(other_, matrixOf(2));
    {
        std::fstream file(path(trips_), std::ios::in | std::ios::out | std::ios::binary);
        file.put('X');
    }
    store().copy(trips_, other_);
    EXPECT_EQ(readText(path(other_)).front(), 'X');
    EXPECT_EQ(fs::file_size(path(other_)), fs::file_size(path(trips_)));
    fs::remove(project().matrixDirectory() + "cubes-id");
    auto again = Project::open(project().root());
    again.store().put(other_, matrixOf(3));
    again.store().remove(trips_);
    EXPECT_EQ(first(again.store().get(other_)), 3);
}

TEST_P(EntryStoreTest, namesTheSourceOfACopyThatCannotBeRead) {
    store().put(trips_, matrixOf(1));
    store().put(skim_, matrixOf(2));
    fs::resize_file(path(trips_), 10);
    try {
        store().copy(trips_, skim_);
        ADD_FAILURE() << "nothing was thrown";
    } catch (StoreError const& error) {
        EXPECT_EQ(error.entry(), "Trips/1/1/1/1");
        EXPECT_EQ(nameOf(error.reason()), std::string("damaged"));
    }
    project().execute("update " + project().database().table("public", "cube4data1") + " set filename = '../x.odm'");
    EXPECT_NE(messageOf([&] { store().copy(trips_, skim_); }).find("the row of Trips/1/1/1/1 names the file"),
        std::string::npos);
    EXPECT_EQ(first(store().get(skim_)), 2);
}

TEST_P(EntryStoreTest, takesNoCubeWithoutPartsForAParent) {
    store().put(skim_, matrixOf(1));
    project().execute("update " + project().database().table(schema(), "cube5data1") +
                      " set parentcubenr = 1, parentpurpose = -1, parentmode = -1, parenttime = -1, parentuser = -1, "
                      "parentresult = -1, parentiteration = -1");
    EXPECT_FALSE(store().find(skim_).value().parent);
    EXPECT_TRUE(store().lineage(skim_).ancestors.empty());
}

TEST_P(EntryStoreTest, refusesAParentThatTheTableHasNoColumnsFor) {
    auto const table = project().database().table(schema(), "cube5data1");
    project().execute("drop table " + table);
    project().execute("create table " + table +
                      " (cubenr smallint, purpose smallint, mode smallint, time smallint, \"user\" smallint, result "
                      "smallint, iteration smallint, filename varchar(255), primary key (cubenr, purpose, mode, time, "
                      "\"user\", result, iteration))");
    EXPECT_EQ(reasonOf([&] { store().put(skim_, matrixOf(1), {.parent = trips_}); }), "database");
    EXPECT_EQ(resultKeys(), "");
    store().put(skim_, matrixOf(1));
    EXPECT_EQ(reasonOf([&] { store().setParent(skim_, trips_); }), "database");
    EXPECT_EQ(first(store().get(skim_)), 1);
}

TEST_P(EntryStoreTest, worksOnWhenTheTableOfContentsIsRemoved) {
    auto const table = project().database().table("public", "cubes_content");
    store().put(trips_, matrixOf(1));
    project().execute("drop table " + table);
    EXPECT_EQ(first(store().get(trips_)), 1);
    store().put(trips_, matrixOf(2));
    EXPECT_EQ(first(store().get(trips_)), 2);
    EXPECT_EQ(joined(project().sql("select size from " + table)), std::to_string(fs::file_size(path(trips_))) + "\n");
}

TEST_P(EntryStoreTest, removesNoDirectoryForAnEntryOfACube) {
    store().put(trips_, matrixOf(1));
    fs::create_directories(project().matrixDirectory() + "sub/deep");
    project().execute("update " + project().database().table("public", "cube4data1") + " set filename = 'sub'");
    EXPECT_EQ(reasonOf([&] { store().remove(trips_); }), "file");
    EXPECT_EQ(cubeRows(), "");
    EXPECT_TRUE(fs::exists(project().matrixDirectory() + "sub/deep"));
}

TEST_P(EntryStoreTest, refusesToMoveBetweenRowsThatNameOneFile) {
    store().put(trips_, matrixOf(1));
    store().put(other_, matrixOf(2));
    project().execute(
        "update " + project().database().table("public", "cube4data1") + " set filename = '1-1-1-1-1.odm'");
    EXPECT_EQ(messageOf([&] { store().move(trips_, other_); }),
        "cannot move Trips/1/1/1/1 to Trips/2/1/1/1: the rows of both entries name the same file");
    EXPECT_EQ(first(store().get(trips_)), 1);
}

TEST_P(EntryStoreTest, namesTheEntryThatStandsInTheWay) {
    store().put(trips_, matrixOf(1));
    store().addUser(trips_);
    struct Case {
        std::function<void()> work;
        char const* message;
        char const* entry;
    };
    Case const cases[] = {
        {[&] { store().copy(other_, trips_); },
            "cannot copy Trips/2/1/1/1 to Trips/1/1/1/1: there is no entry Trips/2/1/1/1", "Trips/2/1/1/1"},
        {[&] { store().remove(trips_); }, "cannot remove Trips/1/1/1/1: it is in use; try again later",
            "Trips/1/1/1/1"},
        {[&] { store().get(other_); }, "cannot read Trips/2/1/1/1: there is no such entry", "Trips/2/1/1/1"},
        {[&] { store().removeAll({trips_}); }, "cannot remove 1 entry: Trips/1/1/1/1 is in use; try again later",
            "Trips/1/1/1/1"},
        {[&] { store().move(trips_, other_); },
            "cannot move Trips/1/1/1/1 to Trips/2/1/1/1: Trips/1/1/1/1 is in use; try again later", "Trips/1/1/1/1"},
        {[&] { store().put(trips_, matrixOf(1), {.exists = OnExisting::fail}); },
            "cannot store Trips/1/1/1/1: it already exists", "Trips/1/1/1/1"}};
    for (auto const& [work, message, entry] : cases) {
        EXPECT_EQ(messageOf(work), message);
        try {
            work();
        } catch (StoreError const& error) {
            EXPECT_EQ(error.entry(), entry) << message;
        }
    }
}

// The look-up of a cube's name is the first to fail; the message is about what was asked all the same.
TEST_P(EntryStoreTest, namesTheTaskWhenTheRegisterIsOutOfReach) {
    project().execute("drop table cube");
    auto const message = messageOf([&] { store().get(trips_); });
    EXPECT_EQ(message.substr(0, message.find(':')), "cannot read 1/1/1/1/1");
}

TEST_P(EntryStoreTest, refusesTextsThatAreNoEntryAndAddsNoCube) {
    struct Case {
        char const* text;
        char const* reason;
    };
    Case const cases[] = {{"", "invalidKey"}, {"Trips", "invalidKey"}, {"Trips/1/1/1", "invalidKey"},
        {"/1/1/1/1", "invalidKey"}, {"Trips/1/1/1/x", "invalidKey"}, {"Trips/1/1/1/40000", "invalidKey"},
        {"skim/1/1/1/1", "invalidKey"}, {"skim/1/1/1/1/1/1/1", "invalidKey"}, {"New/1/1/1/1", "notFound"},
        {"Trips/1/1/1/", "invalidKey"}, {"New/1/1/1/x", "invalidKey"}};
    for (auto const& [text, reason] : cases)
        EXPECT_EQ(reasonOf([&, text = text] { store().parse(text); }), reason) << text;
    EXPECT_EQ(store().cubes().size(), 1u);
}

// The fixed classes cut such a name, so that two names become one cube.
TEST_P(EntryStoreTest, refusesNamesOfCubesThatAreTooLongToBeStored) {
    std::string const longest(128, 'n');
    auto const number = store().addCube(longest);
    EXPECT_EQ(store().findCube(longest).value().number, number);
    EXPECT_FALSE(store().findCube(longest + "2"));
    EXPECT_EQ(reasonOf([&] { store().parse(longest + "2/1/1/1/1"); }), "notFound");
    try {
        store().addCube(longest + "xy");
        ADD_FAILURE() << "nothing was thrown";
    } catch (StoreError const& error) {
        EXPECT_STREQ(nameOf(error.reason()), "invalidKey");
        EXPECT_EQ(error.cause(), "the name has 130 characters, at most 128 are stored");
    }
    EXPECT_EQ(store().cubes().size(), 2u);
}

TEST_P(EntryStoreTest, countsTheCharactersOfANameNotItsBytes) {
    std::string umlauts;
    for (int i = 0; i < 128; ++i) umlauts += platform::fromUtf8("\xC3\xA4");
    auto const number = store().addCube(umlauts);
    EXPECT_EQ(store().findCube(umlauts).value().number, number);
    EXPECT_EQ(reasonOf([&] { store().addCube(umlauts + "x"); }), "invalidKey");
}

TEST_P(EntryStoreTest, storesANewEntryAsOneRowAndOneFile) {
    store().put(trips_, matrixOf(5));
    EXPECT_EQ(cubeRows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
    EXPECT_EQ(first(store().get(trips_)), 5);
    auto const found = store().find(trips_);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->text, "Trips/1/1/1/1");
    EXPECT_EQ(found->users, 0);
    EXPECT_FALSE(found->parent);
    EXPECT_TRUE(fs::exists(found->file));
    // The cube objects find the same.
    TRkMatCubes const cubes(project().settings(), ".odm", false);
    EXPECT_EQ(cubes.Get("Trips", 1, 1, 1, 1, 1, 2, lsNone, false), 17.0);
}

TEST_P(EntryStoreTest, storesAResultWithItsParent) {
    store().put(skim_, matrixOf(7), {.parent = trips_});
    EXPECT_EQ(resultRows(), "-1|1|1|1|1|2|0|0|1-1-1-1-2-0.skm|1|1|NULL\n");
    EXPECT_EQ(store().parent(skim_), trips_);
    EXPECT_EQ(store().get(skim_).Type(), mtSkim);
    TRkSkimCube const skims(project().settings(), false);
    EXPECT_EQ(skims.Get(1, 1, 1, 1, 2, 0, 0, 0, lsNone, false), 7.0);
}

TEST_P(EntryStoreTest, replacesAMatrixAndKeepsRowAndParent) {
    store().put(skim_, matrixOf(7), {.parent = trips_});
    store().put(skim_, matrixOf(8));
    EXPECT_EQ(first(store().get(skim_)), 8);
    EXPECT_EQ(store().parent(skim_), trips_);
    store().put(skim_, matrixOf(9), {.parent = other_});
    EXPECT_EQ(store().parent(skim_), other_);
}

TEST_P(EntryStoreTest, replacesTheFileThatTheRowNames) {
    store().put(trips_, matrixOf(1));
    fs::rename(path(trips_), project().matrixDirectory() + "mine.odm");
    project().execute("update " + project().database().table("public", "cube4data1") + " set filename = 'mine.odm'");
    store().put(trips_, matrixOf(2));
    EXPECT_EQ(first(store().get(trips_)), 2);
    EXPECT_EQ(cubeRows(), "1|1|1|1|1|0|mine.odm\n");
}

TEST_P(EntryStoreTest, keepsWhatWasReadWhenTheEntryIsReplacedOrRemoved) {
    store().put(trips_, matrixOf(1));
    auto const read = store().get(trips_);
    store().put(trips_, matrixOf(2));
    EXPECT_EQ(first(read), 1);
    store().remove(trips_);
    EXPECT_EQ(read.Elements()[5], 13);
}

TEST_P(EntryStoreTest, refusesToStoreAndChangesNothing) {
    store().put(trips_, matrixOf(1));
    store().addUser(trips_);
    auto const before = cubeRows();
    struct Case {
        char const* reason;
        std::function<void()> work;
    };
    Case const cases[] = {
        {"inUse", [&] { store().put(trips_, matrixOf(2)); }},
        {"alreadyExists", [&] { store().put(trips_, matrixOf(2), {.exists = OnExisting::fail}); }},
        {"notFound",
            [&] {
                store().put({7, 1, 1, 1, 1}, matrixOf(2));
            }},
        {"invalidKey",
            [&] {
                store().put({1, 0, 1, 1, 1}, matrixOf(2));
            }},
        {"invalidKey",
            [&] {
                store().put({-1, 1, 1, 1, 1, -1, 0}, matrixOf(2));
            }},
        {"invalidKey",
            [&] {
                store().put({-1, 1, 1, 1, 1}, matrixOf(2));
            }},
        {"invalidKey",
            [&] {
                store().put({1, 1, 1, 1, 1, 1, 1}, matrixOf(2));
            }},
        {"invalidKey", [&] { store().put(other_, matrixOf(2), {.parent = trips_}); }},
        {"invalidKey", [&] { store().put(routes_, matrixOf(2)); }},
        {"wrongShape", [&] { store().put(other_, TRkMatrix()); }},
        {"invalidKey", [&] { store().putFile(other_, [](std::string const&) {}); }},
    };
    for (auto const& [reason, work] : cases) EXPECT_EQ(reasonOf(work), reason);
    EXPECT_EQ(cubeRows(), before);
    EXPECT_EQ(resultRows(), "");
    EXPECT_EQ(first(store().get(trips_)), 1);
}

TEST_P(EntryStoreTest, addsNoRowForAFileWhoseNameIsADirectory) {
    // A directory of the file's name cannot be replaced.
    fs::create_directory(project().matrixDirectory() + "1-1-1-1-1.odm");
    EXPECT_EQ(reasonOf([&] { store().put(trips_, matrixOf(1)); }), "file");
    EXPECT_EQ(cubeRows(), "");
}

TEST_P(EntryStoreTest, removesNoDirectoryOfSeveralFiles) {
    store().put(skim_, matrixOf(1));
    store().putFile(routes_, [](std::string const& file) { writeFile(file, "routes"); });
    auto const directory = fs::path(store().find(routes_)->file).parent_path().filename().string();
    project().execute("update " + project().database().table(schema(), "cube5data1") + " set filename = '" + directory +
                      "' where cubenr = -1");
    EXPECT_EQ(reasonOf([&] { store().remove(skim_); }), "file");
    EXPECT_FALSE(store().find(skim_));
    EXPECT_EQ(readFile(store().find(routes_)->file), "routes");
}

TEST_P(EntryStoreTest, refusesAFileThatSomebodyElseWrites) {
    store().put(trips_, matrixOf(1));
    auto const writer = TRkMatrix(2, 3, mtMatrixCube, path(trips_).c_str(), 1, "", "", false, mkDefault, lsReadWrite);
    ASSERT_TRUE(writer.IsValid());
    EXPECT_EQ(reasonOf([&] { store().put(trips_, matrixOf(2)); }), "locked");
    EXPECT_EQ(reasonOf([&] { store().remove(trips_); }), "locked");
    EXPECT_EQ(first(store().get(trips_)), 1);
}

TEST_P(EntryStoreTest, saysWhyAMatrixCannotBeRead) {
    store().put(trips_, matrixOf(1));
    store().put(other_, matrixOf(1));
    EXPECT_EQ(reasonOf([&] { store().get({1, 9, 9, 9, 9}); }), "notFound");
    EXPECT_EQ(reasonOf([&] { store().get(routes_); }), "invalidKey");
    fs::resize_file(path(trips_), 10);
    EXPECT_EQ(reasonOf([&] { store().get(trips_); }), "damaged");
    fs::remove(path(trips_));
    EXPECT_EQ(reasonOf([&] { store().get(trips_); }), "notFound");
    project().execute("update " + project().database().table("public", "cube4data1") + " set filename = '../x.odm'");
    EXPECT_EQ(reasonOf([&] { store().get(other_); }), "outsideDirectory");
    EXPECT_EQ(store().find(other_)->file, "");
}

TEST_P(EntryStoreTest, listsEntriesInTheOrderOfTheirKeysAsSelected) {
    store().addCube("Base");
    for (EntryKey const& key :
        {EntryKey(2, 1, 1, 1, 1), EntryKey(1, 2, 1, 1, 1), EntryKey(1, 1, 2, 1, 1), EntryKey(-8, 1, 1, 1, 1),
            EntryKey(-1, 1, 1, 1, 1, 1, 1), EntryKey(-1, 1, 1, 1, 1, 1, 0), EntryKey(-2, 1, 1, 1, 1, 1, 0)})
        store().put(key, matrixOf(1));
    auto const listed = [&](EntrySelection const& selection) {
        std::string texts;
        for (auto const& entry : store().entries(selection)) texts += entry.text + " ";
        return texts;
    };
    EXPECT_EQ(listed({}), "fare/1/1/1/1 Trips/1/2/1/1 Trips/2/1/1/1 Base/1/1/1/1 selectedlink/1/1/1/1/1/0 "
                          "skim/1/1/1/1/1/0 skim/1/1/1/1/1/1 ");
    EXPECT_EQ(listed({.cube = "trips"}), "Trips/1/2/1/1 Trips/2/1/1/1 ");
    EXPECT_EQ(listed({.cube = "2"}), "Base/1/1/1/1 ");
    EXPECT_EQ(listed({.cube = "skim"}), "skim/1/1/1/1/1/0 skim/1/1/1/1/1/1 ");
    EXPECT_EQ(listed({.iteration = 1}), "skim/1/1/1/1/1/1 ");
    EXPECT_EQ(listed({.purpose = 2}), "Trips/2/1/1/1 ");
    EXPECT_EQ(reasonOf([&] { listed({.cube = "Nobody"}); }), "notFound");
}

TEST_P(EntryStoreTest, copiesTheFileAndGivesTheCopyNoParent) {
    store().put(skim_, matrixOf(7), {.parent = trips_});
    EntryKey const copy(-2, 1, 1, 1, 1, 1, 0);
    store().copy(skim_, copy);
    EXPECT_EQ(first(store().get(copy)), 7);
    EXPECT_FALSE(store().parent(copy));
    EXPECT_EQ(store().parent(skim_), trips_);
    EXPECT_EQ(reasonOf([&] { store().copy(skim_, copy, {.exists = OnExisting::fail}); }), "alreadyExists");
    store().addUser(copy);
    EXPECT_EQ(reasonOf([&] { store().copy(skim_, copy); }), "inUse");
}

TEST_P(EntryStoreTest, convertsBetweenEntriesOfCubesAndResults) {
    store().put(trips_, matrixOf(3));
    store().copy(trips_, skim_);
    EXPECT_EQ(store().get(skim_).Type(), mtSkim);
    store().move(skim_, other_);
    EXPECT_EQ(store().get(other_).Type(), mtMatrixCube);
    EXPECT_EQ(first(store().get(other_)), 3);
    EXPECT_FALSE(store().find(skim_));
    EXPECT_EQ(resultRows(), "");
}

TEST_P(EntryStoreTest, movesFileRowAndParentInOneStep) {
    store().put(skim_, matrixOf(7), {.parent = trips_});
    EntryKey const target(-1, 1, 1, 3, 1, 2, 0);
    store().put(target, matrixOf(1));
    auto const left = path(skim_);
    EXPECT_EQ(reasonOf([&] { store().move(skim_, target, {.exists = OnExisting::fail}); }), "alreadyExists");
    store().move(skim_, target);
    EXPECT_EQ(first(store().get(target)), 7);
    EXPECT_EQ(store().parent(target), trips_);
    EXPECT_FALSE(store().find(skim_));
    EXPECT_FALSE(fs::exists(left));
    store().move(target, target);
    EXPECT_EQ(first(store().get(target)), 7);
}

TEST_P(EntryStoreTest, removesRowAndFileUnlessInUse) {
    store().put(trips_, matrixOf(1));
    auto const file = path(trips_);
    {
        auto const guard = store().use(trips_);
        EXPECT_EQ(store().find(trips_)->users, 1);
        EXPECT_EQ(reasonOf([&] { store().remove(trips_); }), "inUse");
        EXPECT_EQ(first(store().get(trips_)), 1);
    }
    store().remove(trips_);
    EXPECT_EQ(cubeRows(), "");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(reasonOf([&] { store().remove(trips_); }), "notFound");
}

TEST_P(EntryStoreTest, removesAllOfASelectionOrNone) {
    store().put(trips_, matrixOf(1));
    store().put(other_, matrixOf(1));
    store().put(skim_, matrixOf(1));
    store().addUser(skim_);
    EXPECT_EQ(reasonOf([&] { store().removeAll(EntrySelection{}); }), "inUse");
    EXPECT_EQ(cubeRows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n1|2|1|1|1|0|1-2-1-1-1.odm\n");
    EXPECT_EQ(store().removeAll({.cube = "Trips"}), 2u);
    EXPECT_EQ(cubeRows(), "");
    EXPECT_EQ(store().removeUser(skim_), 0);
    EXPECT_EQ(store().removeAll(EntrySelection{}), 1u);
}

TEST_P(EntryStoreTest, removesACubeWithItsEntries) {
    store().put(trips_, matrixOf(1));
    EXPECT_EQ(store().removeCube(1), 1u);
    EXPECT_TRUE(store().cubes().empty());
    EXPECT_EQ(cubeRows(), "");
}

TEST_P(EntryStoreTest, removesNoCubeWhoseEntriesAreInUseAndNoKind) {
    store().put(trips_, matrixOf(1));
    store().put(skim_, matrixOf(1));
    auto const guard = store().use(trips_);
    EXPECT_EQ(reasonOf([&] { store().removeCube(1); }), "inUse");
    EXPECT_EQ(reasonOf([&] { store().removeCube(-1); }), "invalidKey");
    EXPECT_EQ(reasonOf([&] { store().removeCube(7); }), "notFound");
    EXPECT_EQ(store().cubes().size(), 1u);
    EXPECT_TRUE(store().find(trips_) && store().find(skim_));
}

// What others do to an entry while its file is written is seen before the file is replaced.
TEST_P(EntryStoreTest, refusesAnEntryThatIsUsedWhileItsFileIsWritten) {
    auto const writeText = [](std::string const& path, char const* text) { std::ofstream(path) << text; };
    store().putFile(routes_, [&](std::string const& path) { writeText(path, "old"); });
    EXPECT_EQ(reasonOf([&] {
        store().putFile(routes_, [&](std::string const& path) {
            writeText(path, "new");
            store().addUser(routes_);
        });
    }),
        "inUse");
    EXPECT_EQ(readText(path(routes_)), "old");
    EXPECT_EQ(store().find(routes_)->users, 1);
}

TEST_P(EntryStoreTest, addsTheRowAgainThatWasDeletedWhileTheFileWasWritten) {
    auto const table = project().database().table(schema(), "cube5data1");
    store().putFile(routes_, [](std::string const& path) { std::ofstream(path) << "old"; });
    store().putFile(routes_,
        [&](std::string const& path) {
            std::ofstream(path) << "new";
            project().execute("delete from " + table);
        },
        {.parent = trips_});
    EXPECT_EQ(readText(path(routes_)), "new");
    EXPECT_EQ(store().parent(routes_), trips_);
}

TEST_P(EntryStoreTest, refusesToReplaceAnEntryThatWasAddedWhileTheFileWasWritten) {
    auto const writeAfterwards = [&](std::string const& path) {
        std::ofstream(path) << "new";
        project().execute("insert into " + project().database().table(schema(), "cube5data1") +
                          " (cubenr, purpose, mode, time, \"user\", result, iteration, filename) values "
                          "(-9, 1, 1, 1, 1, 1, 0, 'Other.FDB')");
    };
    EXPECT_EQ(reasonOf([&] { store().putFile(routes_, writeAfterwards); }), "locked");
    EXPECT_EQ(store().find(routes_)->storedName, "Other.FDB");
}

// A rollback of the caller's brings back rows, but no files.
TEST_P(EntryStoreTest, removesAndMovesNothingInsideATransactionOfTheCaller) {
    store().put(trips_, matrixOf(1));
    auto& connection = *project().project().connection();
    connection.Execute("BEGIN");
    std::function<void()> const changes[] = {[&] { store().remove(trips_); },
        [&] { store().removeAll(EntrySelection{}); }, [&] { store().removeCube(1); },
        [&] { store().move(trips_, other_); }};
    for (auto const& change : changes) EXPECT_EQ(reasonOf(change), "database");
    store().put(other_, matrixOf(2));
    connection.Execute("ROLLBACK");
    EXPECT_EQ(first(store().get(trips_)), 1);
    EXPECT_FALSE(store().find(other_));
}

TEST_P(EntryStoreTest, countsEntriesByCube) {
    EXPECT_TRUE(store().counts().empty());
    for (EntryKey const& key : {trips_, other_, skim_, EntryKey(-8, 1, 1, 1, 1)}) store().put(key, matrixOf(1));
    EXPECT_EQ(store().counts(), (std::map<short, std::size_t>{{-8, 1}, {-1, 1}, {1, 2}}));
}

TEST_P(EntryStoreTest, countsUsersAndReleasesThem) {
    store().put(trips_, matrixOf(1));
    EXPECT_EQ(store().addUser(trips_), 1);
    auto first = store().use(trips_);
    auto const second = std::move(first);
    EXPECT_EQ(store().find(trips_)->users, 2);
    EXPECT_EQ(store().removeUser(trips_), 1);
    EXPECT_EQ(store().removeUser(trips_), 0);
    EXPECT_EQ(store().removeUser(trips_), 0);
    EXPECT_EQ(reasonOf([&] { store().addUser(other_); }), "notFound");
}

TEST_P(EntryStoreTest, storesRoutesWithWhatTheCallersFunctionWrites) {
    auto const writing = [](char const* text) { return [text](std::string const& path) { writeFile(path, text); }; };
    store().putFile(routes_, writing("old"), {.parent = trips_});
    EXPECT_EQ(readFile(path(routes_)), "old");
    struct OwnError {};
    EXPECT_THROW(store().putFile(routes_, [](std::string const&) { throw OwnError(); }), OwnError);
    EXPECT_THROW(store().putFile(routes_,
                     [](std::string const& file) {
                         writeFile(file, "half");
                         throw std::runtime_error("mine");
                     }),
        std::runtime_error);
    EXPECT_EQ(readFile(path(routes_)), "old");
    store().putFile(routes_, writing("new"));
    EXPECT_EQ(readFile(path(routes_)), "new");
    EXPECT_EQ(store().parent(routes_), trips_);
    EntryKey const target(-9, 2, 1, 1, 1, 1, 0);
    store().move(routes_, target);
    EXPECT_EQ(readFile(path(target)), "new");
    EXPECT_EQ(filesIn(fs::path(path(target)).parent_path().string()), "2-1-1-1-1-0.FDB\n");
}

TEST_P(EntryStoreTest, findsParentsChildrenAndTheWholeLineage) {
    EntryKey const a(-1, 1, 1, 1, 1, 1, 0), b(-1, 1, 1, 1, 1, 2, 0), c(-2, 1, 1, 1, 1, 1, 0);
    store().put(trips_, matrixOf(1));
    store().put(a, matrixOf(1), {.parent = trips_});
    store().put(b, matrixOf(1), {.parent = a});
    store().put(c, matrixOf(1), {.parent = trips_});
    EXPECT_EQ(store().children(trips_), (std::vector<EntryKey>{c, a}));
    auto const lineage = store().lineage(a);
    EXPECT_EQ(lineage.ancestors, std::vector<EntryKey>{trips_});
    ASSERT_EQ(lineage.descendants.size(), 1u);
    EXPECT_EQ(lineage.descendants[0].key, b);
    EXPECT_EQ(store().lineage(trips_).descendants.size(), 3u);
    // Applications may have stored a cycle, which ends it.
    project().execute("update " + project().database().table(schema(), "cube5data1") +
                      " set parentcubenr = -1, parentpurpose = 1, parentmode = 1, parenttime = 1, parentuser = 1, "
                      "parentresult = 2, parentiteration = 0 where cubenr = -1 and result = 1");
    EXPECT_EQ(store().lineage(a).ancestors, std::vector<EntryKey>{b});
    store().setParent(a, std::nullopt);
    EXPECT_FALSE(store().parent(a));
    EXPECT_EQ(reasonOf([&] { store().setParent(trips_, a); }), "invalidKey");
}

TEST_P(EntryStoreTest, showsAndRemovesWhatApplicationsStoredUnderAnyKey) {
    project().execute("insert into " + project().database().table("public", "cube4data1") +
                      " (cubenr, purpose, mode, time, \"user\", filename) values (-5, 0, -3, 1, 1, 'x.odm')");
    EntryKey const odd(-5, 0, -3, 1, 1);
    ASSERT_TRUE(store().find(odd));
    EXPECT_EQ(store().find(odd)->text, "-5/0/-3/1/1");
    store().remove(odd);
    EXPECT_FALSE(store().find(odd));
}

}
}
