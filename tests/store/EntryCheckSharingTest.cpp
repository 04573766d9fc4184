// Checks of projects that share a directory with another project, of the same database or of another one.

#include <cubes/store/EntryStore.h>

#include <cubes/project/Project.h>

#include <filesystem>
#include <set>

#include "store/Findings.h"
#include "support/Backend.h"
#include "support/CubeTesting.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

EntryKey const ownTrips{1, 1, 1, 1, 1};
EntryKey const moreOwnTrips{1, 2, 1, 1, 1};
EntryKey const ownSkim{-1, 1, 1, 1, 1, 1, 0};
EntryKey const otherSkim{-1, 2, 1, 1, 1, 1, 0};

class EntryCheckSharingTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        database_ = std::make_unique<TestDatabase>(backend());
        own_ = std::make_unique<Project>(Project::create(directory_.file("own"), {.database = database_->url()}));
        own().addCube("Trips");
        own().put(ownTrips, smallMatrix(1));
        own().put(moreOwnTrips, smallMatrix(2));
        own().put(ownSkim, smallMatrix(3));
    }

    EntryStore& own() { return own_->store(); }
    std::string file(std::string const& name) const { return directory_.file(name); }
    TestDatabase const& database() const { return *database_; }
    /// A project on that database whose files are in the directories of the first one.
    Project sharing(TestDatabase const& database) const {
        return Project::create(file("other"),
            {.database = database.url(), .matrixDirectory = "../own/matrices", .workingDirectory = "../own/results"});
    }
    /// Another project on the same database that has its own matrices and shares the results.
    Project sharingResults() const {
        return Project::create(file("other"), {.database = database_->url(), .workingDirectory = "../own/results"});
    }
    void reopen() {
        own_.reset();
        own_ = std::make_unique<Project>(Project::open(file("own")));
    }

private:
    TempDir directory_;
    std::unique_ptr<TestDatabase> database_;
    std::unique_ptr<Project> own_;
};

CUBES_BOTH_BACKENDS(EntryCheckSharingTest);

void repairAll(EntryStore& store) {
    store.repair(store.check({}, {.deep = true}), {.dropRows = true});
}

TEST_P(EntryCheckSharingTest, leavesResultsOfAnotherProjectInTheSameDirectory) {
    auto const other = sharingResults();
    other.store().put(otherSkim, smallMatrix(4));
    auto const findings = own().check();
    EXPECT_EQ(textOf(findings), "otherDirectory\n");
    EXPECT_EQ(findings.front().file, file("own/results/2-1-1-1-1-0.skm"));
    EXPECT_EQ(findings.front().detail, "it belongs to the project " + other.schema());
    repairAll(own());
    repairAll(other.store());
    EXPECT_FALSE(own().find(otherSkim));
    EXPECT_FALSE(other.store().find(ownSkim));
    EXPECT_EQ(own().get(ownSkim).Elements()[0], 3);
    EXPECT_EQ(other.store().get(otherSkim).Elements()[0], 4);
}

TEST_P(EntryCheckSharingTest, leavesResultsThatAnotherProjectHasStoredSinceTheCheck) {
    auto const other = sharingResults();
    writeFile(file("own/results/2-1-1-1-1-0.skm"), "not a matrix");
    auto const findings = own().check();
    ASSERT_EQ(textOf(findings), "fileWithoutRow\n");
    other.store().put(otherSkim, smallMatrix(4));
    for (auto const& repair : own().repair(findings)) EXPECT_EQ(repair.done + repair.failure, "");
    EXPECT_EQ(other.store().get(otherSkim).Elements()[0], 4);
}

TEST_P(EntryCheckSharingTest, repairsAResultWhoseNameAnotherProjectUsesInItsOwnDirectory) {
    auto const other = Project::create(file("other"), {.database = database().url()});
    other.store().put(otherSkim, smallMatrix(4));
    own().put(otherSkim, smallMatrix(5));
    database().execute(
        "delete from " + database().table(Project::open(file("own")).schema(), "cube5data1") + " where purpose = 2");
    repairAll(own());
    EXPECT_EQ(own().get(otherSkim).Elements()[0], 5);
}

TEST_P(EntryCheckSharingTest, leavesADirectoryWhoseFilesRecordCubesOfAnotherDatabase) {
    TestDatabase const another(backend());
    auto const other = sharing(another);
    other.store().addCube("Other");
    auto const before = filesIn(file("own"));
    auto const findings = other.store().check();
    EXPECT_EQ(textOf(findings), "unclaimedDirectory\nunclaimedDirectory\n");
    EXPECT_EQ(findings.front().file, file("own/matrices/"));
    EXPECT_EQ(findings.front().severity(), Severity::note);
    repairAll(other.store());
    EXPECT_TRUE(other.store().counts().empty());
    EXPECT_EQ(filesIn(file("own")), before);
    EXPECT_EQ(textOf(own().check({}, {.deep = true})), "");
}

TEST_P(EntryCheckSharingTest, restoresAllRowsOfADirectoryThatNoRowNames) {
    for (auto const& table : {database().table("public", "cube4data1"), database().table("public", "cubes_content")})
        database().execute("delete from " + table);
    repairAll(own());
    EXPECT_EQ(own().get(ownTrips).Elements()[0], 1);
    EXPECT_EQ(own().get(moreOwnTrips).Elements()[0], 2);
    EXPECT_EQ(textOf(own().check()), "");
}

TEST_P(EntryCheckSharingTest, theFilesOfTheOnlyProjectOnADatabaseAreItsOwn) {
    fs::remove(file("own/matrices/cubes-id"));
    fs::remove(file("own/matrices/1-1-1-1-1.odm"));
    writeFile(file("own/matrices/1-2-1-1-1.odm"), "not a matrix");
    reopen();
    own().put({1, 3, 1, 1, 1}, smallMatrix(4));
    EXPECT_EQ(textOf(own().check()), "damagedFile Trips/2/1/1/1\nmissingFile Trips/1/1/1/1\n");
    own().remove(moreOwnTrips);
    own().remove(ownTrips);
    EXPECT_EQ(textOf(own().check()), "");
}

TEST_P(EntryCheckSharingTest, dropsNoRowOfADirectoryThatIsNotMounted) {
    for (char const* const name : {"own/matrices", "own/results"}) {
        fs::rename(file(name), file("elsewhere"));
        fs::create_directory(file(name));
        reopen();
        auto const findings = own().check();
        ASSERT_FALSE(findings.empty());
        for (auto const& finding : findings) {
            EXPECT_EQ(finding.problem, Problem::unreadableFile) << textOf({finding});
            EXPECT_NE(finding.detail.find("seems to be another one or not mounted"), std::string::npos);
        }
        repairAll(own());
        fs::remove_all(file(name));
        fs::rename(file("elsewhere"), file(name));
        reopen();
        EXPECT_EQ(textOf(own().check()), "");
    }
}

TEST_P(EntryCheckSharingTest, dropsTheRowOfAMissingFileBesideOthersWhoseDirectoryLostItsIdentity) {
    fs::remove(file("own/matrices/cubes-id"));
    fs::remove(own().find(ownTrips)->file);
    reopen();
    EXPECT_EQ(textOf(own().check()), "missingFile Trips/1/1/1/1\n");
    EXPECT_EQ(textOf(own().check({.cube = "Trips", .purpose = 1})), "missingFile Trips/1/1/1/1\n");
    repairAll(own());
    EXPECT_FALSE(own().find(ownTrips));
}

TEST_P(EntryCheckSharingTest, notesThatTheOwnerIsUnknownWhenTheDirectoryLostItsIdentity) {
    auto const other = Project::create(file("other"), {.database = database().url()});
    fs::remove(file("own/matrices/cubes-id"));
    fs::remove(file("own/matrices/1-1-1-1-1.odm"));
    reopen();
    EXPECT_EQ(textOf(own().check()), "unknownOwner Trips/1/1/1/1\n");
    repairAll(own());
    EXPECT_TRUE(own().find(ownTrips));
}

}
}
