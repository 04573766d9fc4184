// Projects that share a database or a directory, and read-only projects.

#include <cubes/store/EntryStore.h>

#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <filesystem>
#include <functional>

#include "support/Backend.h"
#include "support/ChildTask.h"
#include "support/CubeTesting.h"
#include "support/User.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

EntryKey const trips{1, 1, 1, 1, 1};
EntryKey const other{1, 2, 1, 1, 1};
EntryKey const skim{-1, 1, 1, 1, 1, 1, 0};

std::string reasonOf(std::function<void()> const& work) {
    try {
        work();
    } catch (StoreError const& error) {
        return nameOf(error.reason());
    }
    return "nothing was thrown";
}

Project createProject(TestDatabase const& database, std::string const& directory) {
    ProjectOptions options;
    options.database = database.url();
    return Project::create(directory, options);
}

/// Another URL of the same database. `link` is the path of a link to be created to a database file.
std::string otherNameOf(std::string const& url, std::string const& link) {
    constexpr std::string_view sqlite = "sqlite:";
    if (!url.starts_with(sqlite)) return url + (url.find('?') == std::string::npos ? "?" : "&") + "application_name=c";
    std::error_code noLinks;
    fs::create_symlink(url.substr(sqlite.size()), link, noLinks);
    return noLinks ? std::string() : std::string(sqlite) + link;
}

/// Two projects on one database, which share the entries of cubes but not their files.
class EntryProjectsTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        database_ = std::make_unique<TestDatabase>(backend());
        a_ = std::make_unique<Project>(createProject(*database_, directory_.file("a")));
        b_ = std::make_unique<Project>(createProject(*database_, directory_.file("b")));
        a().addCube("Trips");
    }

    TestDatabase const& database() { return *database_; }
    std::string root(char const* name) { return directory_.file(name); }
    EntryStore& a() { return a_->store(); }
    EntryStore& b() { return b_->store(); }
    std::string rows() {
        return joined(
            database().sql("select * from " + database().table("public", "cube4data1") + " order by purpose"));
    }

private:
    TempDir directory_;
    std::unique_ptr<TestDatabase> database_;
    std::unique_ptr<Project> a_;
    std::unique_ptr<Project> b_;
};

CUBES_BOTH_BACKENDS(EntryProjectsTest);

TEST_P(EntryProjectsTest, anEntryWhoseFileBelongsToAnotherProjectIsRefused) {
    a().put(trips, smallMatrix(1));
    b().put(other, smallMatrix(2));
    auto const before = rows();
    std::function<void()> const refused[] = {[&] { b().get(trips); }, [&] { b().put(trips, smallMatrix(3)); },
        [&] { b().copy(trips, skim); }, [&] { b().copy(other, trips); }, [&] { b().move(trips, skim); },
        [&] { b().move(other, trips); }, [&] { b().remove(trips); },
        [&] {
            b().removeAll({trips, other});
        },
        [&] { b().removeCube(1); }, [&] { b().moveFrom(a(), trips, trips); }};
    for (auto const& work : refused) EXPECT_EQ(reasonOf(work), "otherDirectory");
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(a().get(trips).Elements()[0], 1);
    EXPECT_EQ(b().get(other).Elements()[0], 2);
    EXPECT_FALSE(b().find(skim));
}

TEST_P(EntryProjectsTest, anEntryOfUnknownDirectoryIsAccepted) {
    a().put(trips, smallMatrix(1));
    database().execute("delete from " + database().table("public", "cubes_content"));
    b().put(trips, smallMatrix(2));
    EXPECT_EQ(b().get(trips).Elements()[0], 2);
    EXPECT_EQ(reasonOf([&] { a().get(trips); }), "otherDirectory");
}

TEST_P(EntryProjectsTest, aDirectoryThatLostItsIdentityKeepsItsEntries) {
    a().put(trips, smallMatrix(1));
    a().put(skim, smallMatrix(2));
    for (char const* const directory : {"/matrices/cubes-id", "/results/cubes-id"})
        std::filesystem::remove(root("a") + directory);
    auto const again = Project::open(root("a"));
    EXPECT_EQ(again.store().get(trips).Elements()[0], 1);
    again.store().put(skim, smallMatrix(3));
    again.store().remove(trips);
    EXPECT_EQ(again.store().get(skim).Elements()[0], 3);
}

TEST_P(EntryProjectsTest, copiesAndMovesResultsFromOneProjectToAnother) {
    a().put(skim, smallMatrix(1), {.parent = trips});
    b().copyFrom(a(), skim, skim);
    EXPECT_EQ(b().get(skim).Elements()[0], 1);
    EXPECT_FALSE(b().parent(skim));
    b().moveFrom(a(), skim, {-2, 1, 1, 1, 1, 1, 0});
    EXPECT_FALSE(a().find(skim));
    EXPECT_EQ(b().get({-2, 1, 1, 1, 1, 1, 0}).Elements()[0], 1);
}

TEST_P(EntryProjectsTest, anEntryIsNotMovedOntoItselfThroughAnotherProject) {
    auto again = Project::open(root("a"));
    a().put(skim, smallMatrix(1));
    EXPECT_EQ(reasonOf([&] { again.store().moveFrom(a(), skim, skim); }), "otherDirectory");
    EXPECT_EQ(reasonOf([&] { again.store().copyFrom(a(), skim, skim); }), "otherDirectory");
    EXPECT_EQ(a().get(skim).Elements()[0], 1);
}

// One database may have several names: a link, or another name of the same host.
TEST_P(EntryProjectsTest, anEntryIsNotMovedOntoItselfThroughAnotherNameOfTheDatabase) {
    database().execute("insert into " + database().table("public", "cube4data1") +
                       " (cubenr, purpose, mode, time, \"user\", filename) values (1, 1, 1, 1, 1, '1-1-1-1-1.odm')");
    TempDir const place;
    ProjectOptions options;
    options.database = otherNameOf(database().url(), place.file("link.db"));
    if (options.database.empty()) GTEST_SKIP() << "SKIPPED: no links can be made here";
    auto elsewhere = Project::create(place.file("c"), options);
    ASSERT_TRUE(elsewhere.store().find(trips));
    a().put(trips, smallMatrix(1));
    database().execute("delete from " + database().table("public", "cubes_content"));
    EXPECT_EQ(reasonOf([&] { elsewhere.store().moveFrom(a(), trips, trips); }), "otherDirectory");
    EXPECT_EQ(a().get(trips).Elements()[0], 1);
}

TEST_P(EntryProjectsTest, aMoveWhoseSourceCannotBeRemovedChangesNothing) {
    a().put(skim, smallMatrix(1));
    b().put(skim, smallMatrix(2));
    {
        TRkMatrix const writer(
            2, 3, mtSkim, a().find(skim).value().file.c_str(), 1, "", "", false, mkDefault, lsReadWrite);
        ASSERT_TRUE(writer.IsValid());
        EXPECT_EQ(reasonOf([&] { b().moveFrom(a(), skim, skim); }), "locked");
    }
    EXPECT_EQ(b().get(skim).Elements()[0], 2);
    auto const guard = a().use(skim);
    EXPECT_EQ(reasonOf([&] { b().moveFrom(a(), skim, skim); }), "inUse");
    EXPECT_EQ(b().get(skim).Elements()[0], 2);
    EXPECT_EQ(a().get(skim).Elements()[0], 1);
}

// The cube objects record nothing, so an earlier record of the store is no longer valid.
TEST_P(EntryProjectsTest, anEntryStoredByACubeObjectBelongsToItsProject) {
    a().put(trips, smallMatrix(1));
    auto opened = Project::open(root("b"));
    TRkMatCubes cubes(opened.settings(), ".odm", true);
    ASSERT_TRUE(cubes.Set("Trips", 1, 1, 1, 1, smallMatrix(5), lsRead, false));
    EXPECT_EQ(b().get(trips).Elements()[0], 5);
    b().remove(trips);
    EXPECT_FALSE(a().find(trips));
}

TEST_P(EntryProjectsTest, aMatrixOfACubeObjectIsNotMistakenForThatOfAnotherProject) {
    auto opened = Project::open(root("b"));
    TRkMatCubes cubes(opened.settings(), ".odm", true);
    ASSERT_TRUE(cubes.Set("Trips", 1, 1, 1, 1, smallMatrix(5), lsRead, false));
    a().put(trips, smallMatrix(1));
    EXPECT_EQ(reasonOf([&] { b().get(trips); }), "otherDirectory");
    EXPECT_EQ(reasonOf([&] { b().remove(trips); }), "otherDirectory");
    EXPECT_EQ(a().get(trips).Elements()[0], 1);
}

TEST_P(EntryProjectsTest, aProjectCalledPublicKeepsResultsToo) {
    auto project = createProject(database(), root("public"));
    auto& store = project.store();
    store.put(trips, smallMatrix(1));
    store.put(skim, smallMatrix(2), {.parent = trips});
    store.put(skim, smallMatrix(3));
    EXPECT_EQ(store.get(skim).Elements()[0], 3);
    EXPECT_EQ(store.removeAll(EntrySelection{}), 2u);
}

/// An ordinary user reads a project without permission to write to it.
ChildTask const readingOnly("reading a project only", [](int, std::string const& root) {
    becomeOrdinaryUser();
    auto project = Project::open(root);
    auto& store = project.store();
    EXPECT_EQ(store.get(trips).Elements()[0], 1);
    EXPECT_EQ(store.find(trips)->text, "Trips/1/1/1/1");
    EXPECT_EQ(store.cubes().size(), 1u);
    int listed = 0;
    for (auto const& entry : store.entries()) listed += entry.key == trips || entry.key == skim;
    EXPECT_EQ(listed, 2);
    std::function<void()> const refused[] = {[&] { store.put(trips, smallMatrix(2)); },
        [&] { store.put(other, smallMatrix(2)); }, [&] { store.copy(trips, other); }, [&] { store.move(trips, other); },
        [&] { store.remove(trips); }, [&] { store.put(skim, smallMatrix(2), {.parent = other}); }};
    for (auto const& work : refused) EXPECT_EQ(reasonOf(work), "readOnly");
    EXPECT_EQ(store.get(trips).Elements()[0], 1);
    EXPECT_FALSE(store.find(other) || store.parent(skim));
});

TEST_P(EntryProjectsTest, aProjectWithoutWritePermissionIsReadAndRefusesChanges) {
    if (!canBeOrdinaryUser()) GTEST_SKIP() << "SKIPPED: Wine's superuser may write read-only files";
    TempDir const place;
    fs::permissions(place.str(), fs::perms(0755));
    ProjectOptions options;
    if (backend() == Backend::postgres) options.database = database().url();
    {
        auto project = Project::create(place.file("p"), options);
        if (backend() == Backend::sqlite) project.store().addCube("Trips");
        project.store().put(trips, smallMatrix(1));
        project.store().put(skim, smallMatrix(1));
    }
    auto const before = listing(place.str());
    for (auto const& entry : fs::recursive_directory_iterator(place.str()))
        fs::permissions(entry.path(), fs::perms(entry.is_directory() ? 0555 : 0444));
    EXPECT_EQ(readingOnly.inProcesses(1, place.file("p")), 1);
    for (auto const& entry : fs::recursive_directory_iterator(place.str()))
        fs::permissions(entry.path(), fs::perms(entry.is_directory() ? 0755 : 0644));
    EXPECT_EQ(listing(place.str()), before);
}

}
}
