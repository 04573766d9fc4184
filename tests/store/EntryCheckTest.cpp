// Projects that are broken in each way that a check reports, alone and in pairs, beside another project on the same
// database.

#include <cubes/store/EntryStore.h>

#include <cubes/database/TPgConnection.h>
#include <cubes/matrix/MatrixLimits.h>
#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkMatrixException.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <thread>

#include "host/hdf5/GuardedFile.h"
#include "host/matrix/Elements.h"
#include "host/matrix/WriteLock.h"
#include "host/platform/File.h"
#include "host/platform/TemporaryFile.h"
#include "store/Findings.h"
#include "store/RemovalLock.h"
#include "support/Backend.h"
#include "support/CubeTesting.h"
#include "support/Variable.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

EntryKey tripsOf(short user) {
    return {1, 1, 1, 1, user};
}
EntryKey const lonelyEntry{2, 1, 1, 1, 1};
EntryKey const checkedSkim{-1, 1, 1, 1, 1, 1, 0};
EntryKey const derivedSkim{-1, 1, 1, 1, 1, 2, 0};
EntryKey const checkedRoutes{-9, 1, 1, 1, 1, 1, 0};
EntryKey const checkedData{-10, 1, 1, 1, 1, 1, 0};
EntryKey const otherRouteData{-10, 2, 1, 1, 1, 1, 0};

void flip(std::string const& file, std::size_t offset) {
    auto bytes = readFile(file);
    bytes.at(offset) = static_cast<char>(bytes.at(offset) ^ 0x55);
    writeFile(file, bytes);
}

void makeOld(std::string const& file) {
    fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(48));
}

class EntryCheckTest;

/// One way to break a project.
struct Breakage {
    char const* name;
    std::function<void(EntryCheckTest&)> work;
    /// What a check finds, as textOf.
    char const* found;
    /// What is left of that after a repair that drops rows.
    char const* left;
};

class EntryCheckTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        database_ = std::make_unique<TestDatabase>(backend());
        a_ = std::make_unique<Project>(Project::create(root("a"), {.database = database_->url()}));
        b_ = std::make_unique<Project>(Project::create(root("b"), {.database = database_->url()}));
        for (char const* const directory : {"a/matrices", "a/results", "b/matrices", "b/results"})
            setMatrixStorage(root(directory), {Storage::plain, Durability::process});
        execute(backend() == Backend::sqlite ? "pragma synchronous = off" : "set synchronous_commit = off");
        a().addCube("Trips");
        a().addCube("Lonely");
        for (short user = 1; user <= 8; ++user) a().put(tripsOf(user), smallMatrix(user));
        a().put(lonelyEntry, smallMatrix(20));
        a().put(checkedSkim, smallMatrix(30), {.parent = tripsOf(8)});
        a().put(derivedSkim, smallMatrix(40), {.parent = checkedSkim});
        a().putFile(checkedRoutes, [](std::string const& path) { writeFile(path, "routes"); });
        for (auto const& key : {checkedData, otherRouteData})
            a().putFile(key, [](std::string const& path) { writeFile(path, "data"); }, {.parent = checkedRoutes});
        b().put({1, 2, 1, 1, 1}, smallMatrix(50));
        b().put(checkedSkim, smallMatrix(60));
        takeSnapshot();
    }

public:
    EntryStore& a() { return a_->store(); }
    EntryStore& b() { return b_->store(); }
    std::string root(std::string const& name) const { return directory_.file(name); }
    std::string file(EntryKey const& key) { return a().find(key)->file; }
    std::string matrices(std::string const& name) const { return root("a/matrices/" + name); }
    std::string results(std::string const& name) const { return root("a/results/" + name); }
    std::string cubeTable() const { return database_->table("public", "cube4data1"); }
    std::string resultTable() { return database_->table(a_->schema(), "cube5data1"); }
    std::string contentTable() const { return database_->table("public", "cubes_content"); }
    void execute(std::string const& sql) { a_->connection()->Execute(sql.c_str()); }

    void reset();
    std::string rowsOfB();
    /// The elements of all matrices in the project's directories, whatever their files are called.
    std::multiset<std::string> storedMatrices() const;
    /// What the entries hold that can be read: the elements of a matrix, or the bytes of a file of routes.
    std::map<EntryKey, std::string> readableEntries();
    std::string checked() { return textOf(a().check({}, {.deep = true})); }
    void repairAll() { a().repair(a().check({}, {.deep = true}), {.dropRows = true}); }
    void expectRepaired(std::vector<Breakage const*> const& breakages);
    static constexpr std::size_t parts = 6;
    void expectPairsRepaired(std::size_t part);
    /// Runs a check again and again while another connection changes entries again and again.
    void whileAnother(std::function<void(EntryStore&)> const& change, std::function<void()> const& check);

protected:
    TestDatabase const& database() { return *database_; }
    void takeSnapshot();
    std::vector<std::string> tables();

    TempDir directory_;
    std::unique_ptr<TestDatabase> database_;
    std::unique_ptr<Project> a_;
    std::unique_ptr<Project> b_;
};

std::vector<std::string> EntryCheckTest::tables() {
    return {database_->table("", "cube"), cubeTable(), contentTable(), resultTable()};
}

void EntryCheckTest::takeSnapshot() {
    fs::copy(root("a"), root("snapshot"), fs::copy_options::recursive);
    int number = 0;
    for (auto const& table : tables())
        execute("create table snapshot" + std::to_string(++number) + " as select * from " + table);
}

void EntryCheckTest::reset() {
    for (char const* const name : {"/matrices", "/results"}) {
        fs::remove_all(root("a") + name);
        fs::copy(root("snapshot") + name, root("a") + name, fs::copy_options::recursive);
    }
    int number = 0;
    execute("begin");
    for (auto const& table : tables()) {
        execute("delete from " + table);
        execute("insert into " + table + " select * from snapshot" + std::to_string(++number));
    }
    execute("commit");
}

std::string EntryCheckTest::rowsOfB() {
    std::string text;
    for (auto const& selection : {EntrySelection{.purpose = 2}, EntrySelection{.cube = "skim"}})
        for (auto const& entry : b().entries(selection)) text += entry.text + " " + entry.storedName + "\n";
    return text + filesIn(root("b"));
}

std::string bytesOf(float const* elements, std::size_t count) {
    return {reinterpret_cast<char const*>(elements), count * sizeof *elements};
}

std::multiset<std::string> EntryCheckTest::storedMatrices() const {
    std::multiset<std::string> found;
    for (auto const& entry : fs::recursive_directory_iterator(root("a"))) {
        if (!entry.is_regular_file()) continue;
        try {
            auto const file = matrix::openMatrixFile(entry.path().string());
            found.insert(bytesOf(file.elements->all(),
                static_cast<std::size_t>(file.header.rows) * static_cast<std::size_t>(file.header.columns)));
        } catch (TRkMatrixException const&) {
            // It is no matrix, or is damaged.
        }
    }
    return found;
}

std::map<EntryKey, std::string> EntryCheckTest::readableEntries() {
    std::map<EntryKey, std::string> found;
    for (auto const& entry : a().entries()) {
        bool const holdsRoutes = entry.key.cube() == checkedRoutes.cube() || entry.key.cube() == checkedData.cube();
        try {
            if (holdsRoutes && fs::exists(entry.file)) found[entry.key] = readFile(entry.file);
            if (holdsRoutes) continue;
            auto const matrix = a().get(entry.key);
            found[entry.key] = bytesOf(matrix.Elements().data(), matrix.Elements().size());
        } catch (StoreError const&) {
            // It is damaged or missing, or belongs to the other project.
        }
    }
    return found;
}

std::size_t placeOf(std::string const& file, std::string const& mark) {
    return readFile(file).find(mark);
}

void flipElement(std::string const& file, float element) {
    flip(file, placeOf(file, std::string(reinterpret_cast<char const*>(&element), sizeof element)));
}

std::vector<Breakage> const breakages = {
    {"missingFile", [](EntryCheckTest& t) { fs::remove(t.file(tripsOf(1))); }, "missingFile Trips/1/1/1/1\n", ""},
    {"lostRow",
        [](EntryCheckTest& t) { t.execute("delete from " + t.cubeTable() + " where \"user\" = 2 and cubenr = 1"); },
        "fileWithoutRow Trips/1/1/1/2\n", ""},
    {"wrongShape", [](EntryCheckTest& t) { OmxFile::write(t.file(tripsOf(3)), "matrix", TRkMatrix::inMemory(4, 4)); },
        "wrongShape Trips/1/1/1/3\n", "wrongShape Trips/1/1/1/3\n"},
    {"truncatedFile",
        [](EntryCheckTest& t) { fs::resize_file(t.file(tripsOf(4)), fs::file_size(t.file(tripsOf(4))) / 2); },
        "damagedFile Trips/1/1/1/4\n", "damagedFile Trips/1/1/1/4\n"},
    {"damagedIndex", [](EntryCheckTest& t) { flip(t.file(tripsOf(5)), placeOf(t.file(tripsOf(5)), "CUBEIDX2") + 40); },
        "damagedIndex Trips/1/1/1/5\n", ""},
    {"overwrittenIndex",
        [](EntryCheckTest& t) {
            auto bytes = readFile(t.file(tripsOf(6)));
            auto const at = bytes.find("CUBEIDX2");
            bytes.replace(at, 1024, std::string(1024, '\0'));
            writeFile(t.file(tripsOf(6)), bytes);
        },
        "damagedIndex Trips/1/1/1/6\n", ""},
    {"nameOutside",
        [](EntryCheckTest& t) {
            t.execute("update " + t.cubeTable() + " set filename = '../7.odm' where \"user\" = 7 and cubenr = 1");
            fs::remove(t.matrices("1-1-1-1-7.odm"));
        },
        "outsideDirectory Trips/1/1/1/7\n", ""},
    {"wrongContent", [](EntryCheckTest& t) { flipElement(t.file(checkedSkim), 30); }, "wrongContent skim/1/1/1/1/1/0\n",
        "wrongContent skim/1/1/1/1/1/0\n"},
    {"unregisteredCube", [](EntryCheckTest& t) { t.execute("delete from cube where cubenr = 2"); },
        "unregisteredCube 2\n", ""},
    {"strangeFile", [](EntryCheckTest& t) { writeFile(t.matrices("strange.odm"), "not a matrix"); }, "fileWithoutRow\n",
        ""},
    {"lostRouteData",
        [](EntryCheckTest& t) { t.execute("delete from " + t.resultTable() + " where cubenr = -10 and purpose = 2"); },
        "fileWithoutRow routedata/2/1/1/1/1/0\n", ""},
    {"orphanedRouteData",
        [](EntryCheckTest& t) {
            t.execute("update " + t.resultTable() + " set parentresult = 99 where cubenr = -10 and purpose = 1");
        },
        "orphanedRouteData routedata/1/1/1/1/1/0\n", "orphanedRouteData routedata/1/1/1/1/1/0\n"},
    {"leftover",
        [](EntryCheckTest& t) {
            auto const file = t.matrices(".1-9-9-9-9.odm.0123456789abcdef.cubes-tmp");
            writeFile(file, "half a matrix");
            makeOld(file);
        },
        "leftoverFile\n", ""},
    {"completeLeftover",
        [](EntryCheckTest& t) {
            auto const file = t.results(".9-9-9-9-9-9.skm.0123456789abcdef.cubes-tmp");
            OmxFile::write(file, "matrix", smallMatrix(99));
            makeOld(file);
        },
        "leftoverFile\n", ""},
    {"recentTemporaryFile",
        [](EntryCheckTest& t) { writeFile(t.results(".9-9-9-9-9-9.skm.abcdef0123456789.cubes-tmp"), "half"); },
        "recentTemporaryFile\n", "recentTemporaryFile\n"},
    {"missingParent",
        [](EntryCheckTest& t) {
            t.execute("update " + t.resultTable() + " set parentresult = 99 where cubenr = -1 and result = 2");
        },
        "missingParent skim/1/1/1/1/2/0\n", "missingParent skim/1/1/1/1/2/0\n"},
    {"inUse", [](EntryCheckTest& t) { t.a().addUser(tripsOf(8)); }, "inUse Trips/1/1/1/8\n", "inUse Trips/1/1/1/8\n"},
    {"copiedFile", [](EntryCheckTest& t) { writeFile(t.file(derivedSkim), readFile(t.file(tripsOf(8)))); },
        "copiedFile skim/1/1/1/1/2/0\n", "copiedFile skim/1/1/1/1/2/0\n"},
};

// The rows of the other project are always noted.
constexpr char rowOfB[] = "otherDirectory Trips/2/1/1/1\n";

std::string linesOf(std::vector<Breakage const*> const& chosen, char const* Breakage::*lines) {
    std::multiset<std::string> all = {rowOfB};
    for (auto const* const breakage : chosen)
        if (*(breakage->*lines)) all.insert(breakage->*lines);
    std::string text;
    for (auto const& line : all) text += line;
    return text;
}

void EntryCheckTest::expectRepaired(std::vector<Breakage const*> const& chosen) {
    reset();
    auto expected = readableEntries();
    for (auto const* const breakage : chosen) breakage->work(*this);
    auto const stored = storedMatrices();
    auto const readable = readableEntries();
    for (auto const& [key, value] : readable) expected[key] = value;
    auto const others = rowsOfB();
    EXPECT_EQ(checked(), linesOf(chosen, &Breakage::found));
    repairAll();
    EXPECT_EQ(checked(), linesOf(chosen, &Breakage::left));
    EXPECT_TRUE(std::ranges::includes(storedMatrices(), stored));
    auto const repaired = readableEntries();
    for (auto const& [key, value] : repaired) EXPECT_EQ(value, expected[key]) << a().text(key);
    for (auto const& [key, value] : readable) EXPECT_TRUE(repaired.contains(key)) << a().text(key);
    EXPECT_EQ(rowsOfB(), others);
}

void EntryCheckTest::whileAnother(std::function<void(EntryStore&)> const& change, std::function<void()> const& check) {
    std::atomic<bool> isOver = false;
    std::thread other([&] {
        try {
            auto const own = Project::open(root("a"));
            while (!isOver) change(own.store());
        } catch (std::exception const& error) {
            ADD_FAILURE() << error.what();
        }
    });
    for (int i = 0; i < 50; ++i) check();
    isOver = true;
    other.join();
}

CUBES_BOTH_BACKENDS(EntryCheckTest);

TEST_P(EntryCheckTest, findsNothingInAWholeProject) {
    EXPECT_EQ(checked(), rowOfB);
    auto const before = filesIn(root("a"));
    EXPECT_TRUE(a().repair(a().check()).front().done.empty());
    EXPECT_EQ(filesIn(root("a")), before);
}

TEST_P(EntryCheckTest, changesNothingByItself) {
    for (auto const& breakage : breakages) breakage.work(*this);
    for (char const* const directory : {"a/matrices", "a/results"})
        for (char const* const name : {"/cubes-id", "/.cubes-lock"}) fs::remove(root(directory) + name);
    a_ = std::make_unique<Project>(Project::open(root("a")));
    auto const state = [this] {
        std::string text = listing(root("a"));
        for (auto const& table : tables()) text += joined(database().sql("select * from " + table + " order by 1, 2"));
        return text;
    };
    auto const before = state();
    checked();
    EXPECT_EQ(state(), before);
}

TEST_P(EntryCheckTest, leavesRowsWithoutAFileUnlessTheyAreToBeDropped) {
    fs::remove(file(tripsOf(1)));
    auto const repairs = a().repair(a().check());
    EXPECT_TRUE(std::ranges::all_of(repairs, [](Repair const& repair) { return repair.done + repair.failure == ""; }));
    EXPECT_TRUE(a().find(tripsOf(1)));
    repairAll();
    EXPECT_FALSE(a().find(tripsOf(1)));
}

TEST_P(EntryCheckTest, neverDropsARowInUse) {
    fs::remove(file(tripsOf(1)));
    a().addUser(tripsOf(1));
    auto const findings = a().check();
    auto const repairs = a().repair(findings, {.dropRows = true});
    EXPECT_NE(repairs.front().failure.find("is in use"), std::string::npos) << repairs.front().failure;
    EXPECT_TRUE(a().find(tripsOf(1)));
}

TEST_P(EntryCheckTest, neverDropsARowThatMayBeOfAnotherProject) {
    execute("delete from " + contentTable());
    EXPECT_EQ(checked(), "unknownOwner Trips/2/1/1/1\n");
    repairAll();
    EXPECT_TRUE(b().find({1, 2, 1, 1, 1}));
}

TEST_P(EntryCheckTest, neverDropsTheRowOfAFileThatCannotBeExamined) {
    auto const looping = file(tripsOf(1));
    fs::remove(looping);
    std::error_code failure;
    fs::create_symlink(looping, looping, failure);
    if (failure) GTEST_SKIP() << "SKIPPED: no links for this user here";
    EXPECT_EQ(checked(), std::string(rowOfB) + "unreadableFile Trips/1/1/1/1\n");
    repairAll();
    EXPECT_TRUE(a().find(tripsOf(1)));
}

TEST_P(EntryCheckTest, movesAnOldFileThatWasBeingReplacedToTheQuarantineAtOnce) {
    auto const old = matrices(".1-1-1-1-1.odm.0123456789abcdef.cubes-old");
    writeFile(old, "made by another program");
    {
        matrix::WriteLock const lock(file(tripsOf(1)), matrix::WriteLock::Purpose::create);
        EXPECT_EQ(checked(), std::string(rowOfB) + "recentTemporaryFile\n");
    }
    EXPECT_EQ(checked(), std::string("leftoverFile\n") + rowOfB);
    repairAll();
    EXPECT_EQ(checked(), rowOfB);
    EXPECT_EQ(readFile(matrices("quarantine/" + fs::path(old).filename().string())), "made by another program");
}

TEST_P(EntryCheckTest, takesNoFileForDamagedWhenTheReaderIsMissing) {
    auto const leftover = results(".9-9-9-9-9-9.skm.0123456789abcdef.cubes-tmp");
    for (auto const& path : {file(tripsOf(1)), leftover}) {
        OmxFile::write(path, "matrix", smallMatrix(1));
        flip(path, placeOf(path, "CUBEIDX2"));
    }
    makeOld(leftover);
    hdf5::readerSettings().program = root("none");
    EXPECT_EQ(checked(), std::string("leftoverFile\n") + rowOfB + "unreadableFile Trips/1/1/1/1\n");
    repairAll();
    hdf5::readerSettings() = {};
    EXPECT_FALSE(fs::exists(leftover));
    EXPECT_TRUE(fs::exists(results("quarantine/" + fs::path(leftover).filename().string())));
}

TEST_P(EntryCheckTest, takesNoFileForDamagedThatCannotBeRead) {
    auto const path = file(tripsOf(1));
    flip(path, placeOf(path, "CUBEIDX2"));
    for (char const* const failure : {"cannot read", "ends at the start"}) {
        Variable const chosen("CUBES_TEST_FAILURE", failure);
        hdf5::readerSettings().program = BROKEN_READER;
        auto const found = checked();
        hdf5::readerSettings() = {};
        EXPECT_EQ(found, std::string(rowOfB) + "unreadableFile Trips/1/1/1/1\n") << failure;
    }
}

TEST_P(EntryCheckTest, takesNoFileForDamagedThatIsBeyondTheLimits) {
    auto const path = file(tripsOf(1));
    flip(path, placeOf(path, "CUBEIDX2"));
    setMostZones(1);
    auto const found = checked();
    setMostZones(0);
    EXPECT_EQ(found, std::string(rowOfB) + "unreadableFile Trips/1/1/1/1\n");
}

TEST_P(EntryCheckTest, reportsAMissingDirectoryAndDropsNoRow) {
    fs::rename(root("a/matrices"), root("a/elsewhere"));
    EXPECT_NE(checked().find("unreadableFile Trips/1/1/1/1\n"), std::string::npos) << checked();
    repairAll();
    fs::rename(root("a/elsewhere"), root("a/matrices"));
    EXPECT_EQ(checked(), rowOfB);
}

TEST_P(EntryCheckTest, dropsNoRowOfRoutesWhoseDirectoryIsMissing) {
    fs::rename(results("RouteStorage_Routes"), root("elsewhere"));
    EXPECT_EQ(checked(), std::string(rowOfB) + "unreadableFile routes/1/1/1/1/1/0\n");
    repairAll();
    fs::rename(root("elsewhere"), results("RouteStorage_Routes"));
    EXPECT_EQ(checked(), rowOfB);
}

TEST_P(EntryCheckTest, restoresARowWithTheContentOfItsFile) {
    execute("delete from " + cubeTable() + " where \"user\" = 2 and cubenr = 1");
    repairAll();
    EXPECT_EQ(a().get(tripsOf(2)).Elements()[0], 2);
    EXPECT_EQ(a().find(tripsOf(2))->storedName, "1-1-1-1-2.odm");
    b().remove({1, 2, 1, 1, 1});
    EXPECT_EQ(checked(), "");
}

TEST_P(EntryCheckTest, restoresRoutesInTheirDirectory) {
    execute("delete from " + resultTable() + " where result = 1");
    repairAll();
    EXPECT_EQ(a().find(checkedRoutes)->storedName, "RouteStorage_Routes\\1-1-1-1-1-0.FDB");
    EXPECT_EQ(readFile(file(checkedData)), "data");
    EXPECT_EQ(a().get(derivedSkim).Elements()[0], 40);
}

TEST_P(EntryCheckTest, restoresAnEmptyDatabaseFromTheFiles) {
    for (auto const& table : tables()) execute("delete from " + table);
    repairAll();
    EXPECT_EQ(checked(), "");
    EXPECT_EQ(a().cubes().size(), 2u);
    EXPECT_EQ(a().get(a().parse("Lonely/1/1/1/1")).Elements()[0], 20);
    EXPECT_EQ(a().get(a().parse("Trips/1/1/1/7")).Elements()[0], 7);
}

/// Files without a row: their name, and the entry that a repair restores; empty: the file is moved to quarantine.
struct Stray {
    char const* name;
    char const* original;
    char const* restored;
};

constexpr Stray strays[] = {
    // A copy belongs where its name says.
    {"1-1-1-1-9.odm", "1-1-1-1-1.odm", "Trips/1/1/1/9"},
    {"-8-1-1-1-1.frs", "1-1-1-1-1.odm", "fare/1/1/1/1"},
    // A name of the user's own, and the row of the original is there.
    {"saved.odm", "1-1-1-1-1.odm", ""},
    {"01-1-1-1-9.odm", "1-1-1-1-1.odm", ""},
    {"1-1-1-1-0.odm", "1-1-1-1-1.odm", ""},
    // A result among the matrices of cubes.
    {"1-1-1-1-1-9.skm", "1-1-1-1-1.odm", ""},
};

TEST_P(EntryCheckTest, restoresTheEntryOfAStrayFileByItsName) {
    for (auto const& [name, original, restored] : strays) {
        reset();
        fs::copy_file(matrices(original), matrices(name));
        EXPECT_EQ(checked(), std::string("fileWithoutRow") + (*restored ? " " : "") + restored + "\n" + rowOfB) << name;
        repairAll();
        EXPECT_EQ(fs::exists(matrices(name)), *restored != '\0') << name;
        EXPECT_EQ(fs::exists(matrices("quarantine/") + name), *restored == '\0') << name;
        EXPECT_EQ(*restored ? a().get(a().parse(restored)).Elements()[0] : 1, 1) << name;
    }
}

TEST_P(EntryCheckTest, restoresARenamedFileByTheKeyThatItRecords) {
    auto const renamed = matrices("renamed by hand.odm");
    fs::rename(matrices("1-1-1-1-2.odm"), renamed);
    execute("delete from " + cubeTable() + " where \"user\" = 2 and cubenr = 1");
    repairAll();
    EXPECT_EQ(a().find(tripsOf(2))->storedName, "renamed by hand.odm");
    EXPECT_EQ(a().get(tripsOf(2)).Elements()[0], 2);
}

TEST_P(EntryCheckTest, doesNotRestoreAnEntryInACubeThatGotTheNumberOfItsOwn) {
    execute("delete from " + cubeTable() + " where \"user\" = 2 and cubenr = 1");
    execute("update cube set name = 'Freight' where cubenr = 1");
    repairAll();
    EXPECT_FALSE(a().find(tripsOf(2)));
    EXPECT_TRUE(fs::exists(matrices("quarantine/1-1-1-1-2.odm")));
}

TEST_P(EntryCheckTest, explainsEachFileInQuarantineAndOverwritesNone) {
    for (int i = 1; i <= 3; ++i) {
        writeFile(matrices("strange.odm"), std::to_string(i));
        repairAll();
    }
    EXPECT_EQ(filesIn(matrices("quarantine")),
        "strange.odm\nstrange.odm.2\nstrange.odm.2.txt\nstrange.odm.3\nstrange.odm.3.txt\nstrange.odm.txt\n");
    EXPECT_EQ(readFile(matrices("quarantine/strange.odm.3")), "3");
    auto const note = readFile(matrices("quarantine/strange.odm.txt"));
    EXPECT_NE(note.find("from:   " + matrices("strange.odm")), std::string::npos) << note;
    EXPECT_NE(note.find("reason: no row names it"), std::string::npos) << note;
}

TEST_P(EntryCheckTest, leavesFilesThatAreBeingWritten) {
    auto const temporary = matrices(".1-1-1-1-9.odm.0123456789abcdef.cubes-tmp");
    writeFile(temporary, "half a matrix");
    makeOld(temporary);
    fs::copy_file(matrices("1-1-1-1-1.odm"), matrices("1-1-1-1-9.odm"));
    auto const findings = a().check();
    matrix::WriteLock const lock(matrices("1-1-1-1-9.odm"), matrix::WriteLock::Purpose::create);
    EXPECT_EQ(textOf(a().check()), std::string(rowOfB) + "recentTemporaryFile\n");
    a().repair(findings);
    EXPECT_FALSE(a().find(tripsOf(9)));
    EXPECT_TRUE(fs::exists(temporary));
}

TEST_P(EntryCheckTest, leavesATemporaryFileThatItsWriterHolds) {
    platform::TemporaryFile const held(matrices("1-1-1-1-9.odm"));
    platform::TemporaryFile const heldOld(matrices("1-1-1-1-9.odm"), platform::TemporaryFile::Purpose::keepOld);
    makeOld(held.path());
    EXPECT_EQ(checked(), std::string(rowOfB) + "recentTemporaryFile\nrecentTemporaryFile\n");
}

TEST_P(EntryCheckTest, missesNoFileThatIsBeingStored) {
    fs::remove(file(tripsOf(1)));
    {
        matrix::WriteLock const lock(matrices("1-1-1-1-1.odm"), matrix::WriteLock::Purpose::create);
        EXPECT_EQ(checked(), rowOfB);
    }
    EXPECT_EQ(checked(), std::string("missingFile Trips/1/1/1/1\n") + rowOfB);
}

TEST_P(EntryCheckTest, movesALeftoverOfRoutesInAFormOfTheirOwnToTheQuarantine) {
    std::string const name = ".9-9-9-9-9-9.FDB.0123456789abcdef.cubes-tmp";
    fs::create_directories(results("RouteStorage_Routes"));
    writeFile(results("RouteStorage_Routes/" + name), "routes of an application");
    makeOld(results("RouteStorage_Routes/" + name));
    EXPECT_EQ(checked(), std::string("leftoverFile\n") + rowOfB);
    repairAll();
    EXPECT_EQ(readFile(results("RouteStorage_Routes/quarantine/" + name)), "routes of an application");
}

TEST_P(EntryCheckTest, isRefusedWithALimitThatIsNoNumber) {
    auto const findings = a().check();
    Variable const variable("CUBES_MAX_ZONES", "many");
    std::function<void()> const tasks[] = {[&] { a().check(); }, [&] { a().repair(findings); }};
    for (auto const& work : tasks) {
        try {
            work();
            ADD_FAILURE() << "it was not refused";
        } catch (StoreError const& error) {
            EXPECT_NE(error.cause().find("CUBES_MAX_ZONES is \"many\""), std::string::npos) << error.what();
        }
    }
}

TEST_P(EntryCheckTest, leavesWhatHasChangedSinceTheCheck) {
    fs::remove(file(tripsOf(1)));
    execute("delete from " + cubeTable() + " where \"user\" = 2 and cubenr = 1");
    writeFile(matrices("1-1-1-1-9.odm"), "not a matrix");
    auto const findings = a().check();
    a().put(tripsOf(1), smallMatrix(70));
    a().put(tripsOf(2), smallMatrix(80));
    a().put(tripsOf(9), smallMatrix(90));
    for (auto const& repair : a().repair(findings, {.dropRows = true})) EXPECT_EQ(repair.done + repair.failure, "");
    EXPECT_EQ(a().get(tripsOf(1)).Elements()[0], 70);
    EXPECT_EQ(a().get(tripsOf(2)).Elements()[0], 80);
    EXPECT_EQ(a().get(tripsOf(9)).Elements()[0], 90);
}

TEST_P(EntryCheckTest, restoresNoRowInACubeThatGotTheNumberSinceTheCheck) {
    a().removeCube(2);
    OmxFile::write(matrices("2-1-1-1-1.odm"), "matrix", smallMatrix(20));
    auto const findings = a().check();
    ASSERT_EQ(textOf(findings), std::string("fileWithoutRow 2/1/1/1/1\n") + rowOfB);
    a().addCube("Freight");
    std::string failures;
    for (auto const& repair : a().repair(findings)) failures += repair.failure;
    EXPECT_EQ(failures, "the cube number 2 is not that of cube 2; check again");
    EXPECT_FALSE(a().find(lonelyEntry));
}

TEST_P(EntryCheckTest, restoresNoRowInACubeThatGotAnotherNameSinceTheCheck) {
    execute("delete from " + cubeTable() + " where \"user\" = 2 and cubenr = 1");
    auto const findings = a().check();
    ASSERT_EQ(textOf(findings), std::string("fileWithoutRow Trips/1/1/1/2\n") + rowOfB);
    execute("update cube set name = 'Freight' where cubenr = 1");
    std::string failures;
    for (auto const& repair : a().repair(findings)) failures += repair.failure;
    EXPECT_EQ(failures, "the cube number 1 is not that of Trips; check again");
    EXPECT_FALSE(a().find(tripsOf(2)));
}

TEST_P(EntryCheckTest, notesAFileThatRecordsAnotherCubeOfTheNumber) {
    execute("update cube set name = 'Freight' where cubenr = 2");
    EXPECT_EQ(checked(), std::string("copiedFile Freight/1/1/1/1\n") + rowOfB);
    execute("update cube set name = 'LONELY' where cubenr = 2");
    EXPECT_EQ(checked(), rowOfB);
}

TEST_P(EntryCheckTest, registersNoCubeThatWasRemovedMeanwhile) {
    execute("delete from cube where cubenr = 2");
    auto const findings = a().check();
    ASSERT_EQ(textOf(findings), std::string(rowOfB) + "unregisteredCube 2\n");
    auto const removeCube = [&](std::size_t /*done*/, std::size_t /*total*/) {
        if (a().find(lonelyEntry)) a().remove(lonelyEntry);
    };
    EXPECT_EQ(textOf(a().check({}, {.progress = removeCube})), rowOfB);
    for (auto const& repair : a().repair(findings)) EXPECT_EQ(repair.done + repair.failure, "");
    EXPECT_EQ(a().cubes().size(), 1u);
}

TEST_P(EntryCheckTest, missesNoParentOfAnEntryThatWasRemovedMeanwhile) {
    execute("update " + resultTable() + " set parentresult = 99 where cubenr = -10 and purpose = 1");
    auto const removing = [&](EntryInfo const& entry) {
        if (entry.key == checkedData) a().remove(checkedData);
        return std::string();
    };
    EXPECT_EQ(textOf(a().check({}, {.deep = true, .readRoutes = removing})), rowOfB);
}

TEST_P(EntryCheckTest, findsNoErrorWhileOthersStoreMoveAndRemove) {
    whileAnother(
        [](EntryStore& other) {
            other.put(tripsOf(9), smallMatrix(9));
            other.copy(tripsOf(9), derivedSkim);
            other.move(tripsOf(9), tripsOf(10));
            other.remove(tripsOf(10));
        },
        [&] {
            for (auto const& finding : a().check())
                EXPECT_EQ(finding.severity(), Severity::note) << textOf({finding}) << finding.file << finding.detail;
        });
}

TEST_P(EntryCheckTest, refusesNoWriter) {
    // For each of them a check asks whether their target is being written.
    for (int i = 100; i < 300; ++i) {
        auto const leftover = matrices(".1-1-1-1-9.odm.0123456789abc" + std::to_string(i) + ".cubes-tmp");
        writeFile(leftover, "half a matrix");
        makeOld(leftover);
    }
    whileAnother([](EntryStore& other) { other.put(tripsOf(9), smallMatrix(9)); }, [&] { a().check(); });
}

TEST_P(EntryCheckTest, findsAndRestoresNothingWhileOthersRemoveManyEntries) {
    auto const lost = [&] { execute("delete from " + cubeTable() + " where \"user\" = 2 and cubenr = 1"); };
    lost();
    auto const findings = a().check();
    std::optional<store::RemovalLock> removing(root("a/matrices"));
    EXPECT_EQ(checked(), rowOfB);
    std::string failures;
    for (auto const& repair : a().repair(findings)) failures += repair.failure;
    EXPECT_EQ(failures, "entries are being removed from its directory; check again later");
    EXPECT_FALSE(a().find(tripsOf(2)));
    removing.reset();
    a().repair(findings);
    EXPECT_TRUE(a().find(tripsOf(2)));
}

TEST_P(EntryCheckTest, restoresNoRowOfAnEntryThatIsBeingRemoved) {
    // The rows are deleted at once, then the files one after the other, the first of which is locked.
    std::optional<matrix::WriteLock> lock(std::in_place, file(tripsOf(1)), matrix::WriteLock::Purpose::create);
    std::thread remover([&] {
        auto const own = Project::open(root("a"));
        // The file that is locked stays.
        EXPECT_THROW(own.store().removeAll({.cube = "Trips", .purpose = 1}), StoreError);
    });
    while (a().find(tripsOf(8))) std::this_thread::yield();
    repairAll();
    remover.join();
    lock.reset();
    for (short user = 2; user <= 8; ++user) EXPECT_FALSE(a().find(tripsOf(user))) << user;
    EXPECT_FALSE(fs::exists(matrices("1-1-1-1-8.odm")));
}

TEST_P(EntryCheckTest, leavesAFileThatARowOfAnyNameNamesSinceTheCheck) {
    // As "1/1/1/1/9" is written in pairs of digits to the base of 40.
    writeFile(matrices("0101010109.odm"), "not a matrix");
    auto const findings = a().check();
    ASSERT_EQ(textOf(findings), std::string("fileWithoutRow\n") + rowOfB);
    execute("insert into " + cubeTable() +
            " (cubenr, purpose, mode, time, \"user\", filename) values (1, 1, 1, 1, 9, '0101010109.odm')");
    a().repair(findings);
    EXPECT_TRUE(fs::exists(matrices("0101010109.odm")));
}

TEST_P(EntryCheckTest, registersNoCubeForResultsOfAnUnknownKind) {
    execute("update " + resultTable() + " set cubenr = 7 where cubenr = -1 and result = 2");
    EXPECT_EQ(checked().find("unregisteredCube"), std::string::npos) << checked();
}

TEST_P(EntryCheckTest, restoresNoRowForASymbolicLink) {
    auto const target = root("elsewhere.odm");
    fs::copy_file(matrices("1-1-1-1-1.odm"), target);
    if (!makeLink(target, matrices("1-1-1-1-9.odm"))) GTEST_SKIP() << "no symbolic links can be made";
    auto const findings = a().check();
    EXPECT_EQ(textOf(findings), std::string("fileWithoutRow\n") + rowOfB);
    repairAll();
    EXPECT_FALSE(a().find(tripsOf(9)));
    EXPECT_TRUE(isLink(matrices("quarantine/1-1-1-1-9.odm")));
    EXPECT_TRUE(fs::exists(target));
}

TEST_P(EntryCheckTest, restoresNoRowForAFileThatBecameASymbolicLinkSinceTheCheck) {
    auto const target = root("elsewhere.odm");
    auto const link = matrices("1-1-1-1-9.odm");
    fs::copy_file(matrices("1-1-1-1-1.odm"), link);
    auto const findings = a().check();
    fs::rename(link, target);
    if (!makeLink(target, link)) GTEST_SKIP() << "no symbolic links can be made";
    std::string failures;
    for (auto const& repair : a().repair(findings)) failures += repair.failure;
    EXPECT_EQ(failures, "the file is a symbolic link");
    EXPECT_FALSE(a().find(tripsOf(9)));
}

TEST_P(EntryCheckTest, removesReplacedFilesThatWereSetAside) {
    auto const aside = matrices(".1-1-1-1-9.odm.0123456789abcdef.old.cubes-tmp");
    OmxFile::write(aside, "matrix", smallMatrix(98));
    makeOld(aside);
    EXPECT_EQ(checked(), std::string("leftoverFile\n") + rowOfB);
    repairAll();
    EXPECT_FALSE(fs::exists(aside));
    EXPECT_FALSE(fs::exists(matrices("quarantine")));
}

TEST_P(EntryCheckTest, checksTheSelectedEntriesOnly) {
    for (auto const& breakage : breakages) breakage.work(*this);
    EXPECT_EQ(textOf(a().check({.cubeNumber = 2})), "unregisteredCube 2\n");
    EXPECT_EQ(textOf(a().check({.cube = "Trips", .user = 2})), "fileWithoutRow Trips/1/1/1/2\n");
    EXPECT_EQ(textOf(a().check({.cube = "routedata"})), "fileWithoutRow routedata/2/1/1/1/1/0\n"
                                                        "orphanedRouteData routedata/1/1/1/1/1/0\n");
}

TEST_P(EntryCheckTest, readsContentOnlyWhenAskedTo) {
    flipElement(file(checkedSkim), 30);
    EXPECT_EQ(textOf(a().check()), rowOfB);
    EXPECT_NE(checked(), rowOfB);
}

TEST_P(EntryCheckTest, readsRoutesByTheGivenReader) {
    auto const fault = [](EntryInfo const& entry) { return entry.key == checkedData ? "a fault" : ""; };
    auto const findings = a().check({.cubeNumber = checkedData.cube()}, {.deep = true, .readRoutes = fault});
    ASSERT_EQ(textOf(findings), "wrongContent routedata/1/1/1/1/1/0\n");
    EXPECT_EQ(findings.front().detail, "a fault");
    EXPECT_EQ(textOf(a().check({.cubeNumber = checkedData.cube()}, {.readRoutes = fault})), "");
}

TEST_P(EntryCheckTest, givesADamagedMatrixNoNewIndex) {
    flip(file(tripsOf(5)), placeOf(file(tripsOf(5)), "CUBEIDX2") + 40);
    flipElement(file(tripsOf(5)), 5);
    auto const before = readFile(file(tripsOf(5)));
    auto const repairs = a().repair(a().check());
    EXPECT_NE(repairs.front().failure, "");
    EXPECT_EQ(readFile(file(tripsOf(5))), before);
    EXPECT_EQ(checked(), std::string(rowOfB) + "wrongContent Trips/1/1/1/5\n");
}

TEST_P(EntryCheckTest, isRefusedInATransactionOfTheCaller) {
    execute("begin");
    EXPECT_THROW(a().repair({}), StoreError);
    execute("rollback");
}

TEST_P(EntryCheckTest, isRepairedWhateverIsWrong) {
    for (auto const& breakage : breakages) {
        SCOPED_TRACE(breakage.name);
        expectRepaired({&breakage});
    }
}

// All pairs, in parts that run at the same time.
void EntryCheckTest::expectPairsRepaired(std::size_t part) {
    for (auto first = part; first < breakages.size(); first += parts)
        for (auto second = first + 1; second < breakages.size(); ++second) {
            SCOPED_TRACE(std::string(breakages[first].name) + " and " + breakages[second].name);
            expectRepaired({&breakages[first], &breakages[second]});
        }
}

TEST_P(EntryCheckTest, isRepairedWhateverTwoThingsAreWrongPart1) {
    expectPairsRepaired(0);
}

TEST_P(EntryCheckTest, isRepairedWhateverTwoThingsAreWrongPart2) {
    expectPairsRepaired(1);
}

TEST_P(EntryCheckTest, isRepairedWhateverTwoThingsAreWrongPart3) {
    expectPairsRepaired(2);
}

TEST_P(EntryCheckTest, isRepairedWhateverTwoThingsAreWrongPart4) {
    expectPairsRepaired(3);
}

TEST_P(EntryCheckTest, isRepairedWhateverTwoThingsAreWrongPart5) {
    expectPairsRepaired(4);
}

TEST_P(EntryCheckTest, isRepairedWhateverTwoThingsAreWrongPart6) {
    expectPairsRepaired(5);
}

// On Windows a lock belongs to the open file, so that closing another one releases nothing.
#ifndef _WIN32
/// A project whose SQLite database lies among the files of its results, beside a database of the application's own.
TEST(EntryCheckOfSqlite, releasesNoLockOfADatabaseAmongTheFiles) {
    TempDir const directory;
    auto const project = Project::create(directory.file("a"), {.workingDirectory = "."});
    Pgaccess::TPgConnection other("sqlite:" + directory.file("a/own.db"));
    for (auto* const connection : {project.connection(), &other}) connection->Execute("create table t (i integer)");
    // The bytes that each connection locks as long as it is open.
    constexpr std::uint64_t sharedByte = 128;
    constexpr std::uint64_t sharedFirst = 0x40000002;
    constexpr std::uint64_t sharedSize = 510;
    // Closed at the end only, because that releases the locks.
    std::vector<platform::File> databases;
    std::vector<platform::File> indexes;
    for (char const* const name : {"a/cubes.db", "a/own.db"}) {
        databases.push_back(platform::File::openForReading(directory.file(name)));
        indexes.push_back(platform::File::openForReading(directory.file(name) + "-shm"));
    }
    auto const areLocked = [&] {
        return std::ranges::all_of(databases, [&](auto const& file) {
            return file.isLockedByOthers(sharedFirst, sharedSize);
        }) && std::ranges::all_of(indexes, [&](auto const& file) { return file.isLockedByOthers(sharedByte, 1); });
    };
    EXPECT_TRUE(areLocked());
    EXPECT_EQ(textOf(project.store().check()), "");
    EXPECT_TRUE(areLocked());
}
#endif

/// The row of a problem in the documentation; empty when there is none.
std::string documentedRow(std::string const& documentation, ProblemInfo const& problem) {
    auto const begin = documentation.find("| `" + std::string(problem.name) + "` | " + nameOf(problem.severity) + " |");
    return begin == std::string::npos ? "" : documentation.substr(begin, documentation.find('\n', begin) - begin);
}

TEST(Problems, areDocumentedWithSeverityAndRepair) {
    auto const documentation = readText(CUBES_DOCUMENTS "/tool.md");
    for (auto const& problem : problems()) {
        auto const row = documentedRow(documentation, problem);
        std::string const repair = *problem.repair ? problem.repair : "nothing";
        EXPECT_NE(row.find(repair), std::string::npos) << problem.name << ": " << row;
    }
}

}
}
