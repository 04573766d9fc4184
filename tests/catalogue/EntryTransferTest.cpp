// All forms of copying and moving, in four-key cubes and six-key results.

#include <filesystem>
#include <stdexcept>

#include "support/ChildTask.h"
#include "support/EntryFamily.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class EntryTransfer : public EntriesTest {
protected:
    void SetUp() override {
        EntriesTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        otherCatalogue_ = entries().copied();
        otherCube_ = entries().otherCube();
    }

    /// Another catalogue of the same cubes.
    EntryFamily& other() { return *otherCatalogue_; }
    /// The cube that gets the entry: by name within a catalogue it must be another one if the target must not exist.
    EntryFamily& target(Form const& form) { return form.isByName && !form.isBetween ? *otherCube_ : entries(); }
    bool run(Form const& form, short from, short to, bool failIfExists = false) {
        return target(form).run(form, form.isBetween ? other() : entries(), from, to, failIfExists);
    }
    std::string targetPath(Form const& form, short n) { return pathOf(target(form).fileOf(n)); }
    std::string state() { return rows() + files(); }
    /// Removes all entries and files, for the next form.
    void clear() {
        execute("delete from " + table());
        for (auto const& file : fs::directory_iterator(entries().directory())) fs::remove_all(file);
    }

private:
    std::unique_ptr<EntryFamily> otherCatalogue_;
    std::unique_ptr<EntryFamily> otherCube_;
};

CUBES_BOTH_FAMILIES(EntryTransfer);

TEST_P(EntryTransfer, copiesOrMovesRowAndFileToAnotherKey) {
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        entries().store(1, 5);
        entries().raise(1);
        std::string const bytes = readFile(path(1));
        EXPECT_TRUE(run(form, 1, 2));
        EXPECT_EQ(rows(), (form.moves ? "" : row(1, "1")) + row(target(form), 2));
        EXPECT_EQ(files(), (form.moves ? "" : entries().fileOf(1) + "\n") + target(form).fileOf(2) + "\n");
        EXPECT_EQ(readFile(targetPath(form, 2)), bytes);
        EXPECT_EQ(target(form).first(2), 5.0);
        clear();
    }
}

TEST_P(EntryTransfer, givesACopyAFileOfItsOwn) {
    for (auto const& form : entries().forms()) {
        if (form.moves) continue;
        SCOPED_TRACE(form.name);
        entries().store(1, 5);
        EXPECT_TRUE(run(form, 1, 2));
        EXPECT_FALSE(fs::equivalent(path(1), targetPath(form, 2)));
        EXPECT_TRUE(target(form).save(smallMatrix(9), 2));
        EXPECT_EQ(entries().first(1), 5.0);
        EXPECT_TRUE(entries().clear(1));
        EXPECT_EQ(target(form).first(2), 9.0);
        clear();
    }
}

TEST_P(EntryTransfer, replacesTheFileOfATargetAndKeepsItsName) {
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        entries().store(1, 1);
        target(form).store(2, 2);
        name(2, "mine.odm");
        fs::rename(targetPath(form, 2), pathOf("mine.odm"));
        EXPECT_TRUE(run(form, 1, 2));
        EXPECT_EQ(read("select filename from " + table() + " where " + lastColumn() + " = 2"), "mine.odm\n");
        EXPECT_EQ(target(form).first(2), 1.0);
        EXPECT_EQ(entries().check(1), !form.moves);
        EXPECT_EQ(files(), (form.moves ? "" : entries().fileOf(1) + "\n") + "mine.odm\n");
        clear();
    }
}

TEST_P(EntryTransfer, ofAMissingSourceCreatesNothing) {
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        target(form).store(2, 2);
        std::string const before = state();
        for (bool const failIfExists : {false, true}) {
            EXPECT_EQ(run(form, 1, 2, failIfExists), entries().resultOfNothingToTransfer());
            EXPECT_EQ(run(form, 7, 8, failIfExists), entries().resultOfNothingToTransfer());
        }
        EXPECT_EQ(state(), before);
        EXPECT_EQ(target(form).first(2), 2.0);
        clear();
    }
}

TEST_P(EntryTransfer, withoutAnEntryTableIsFalse) {
    entries().store(1, 1);
    std::string const before = state();
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        target(form).setSchema("nowhere");
        EXPECT_FALSE(run(form, 1, 2));
        target(form).findSchema();
        EXPECT_EQ(state(), before);
    }
}

TEST_P(EntryTransfer, withoutAnEntryTableOfTheSourceIsFalse) {
    entries().store(1, 1);
    std::string const before = state();
    other().setSchema("nowhere");
    for (auto const& form : entries().forms()) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(run(form, 1, 2));
        EXPECT_EQ(state(), before);
    }
    // Only the source was missing.
    other().findSchema();
    for (auto const& form : entries().forms()) {
        if (!form.isBetween) continue;
        EXPECT_TRUE(run(form, 1, 2)) << form.name;
        clear();
        entries().store(1, 1);
    }
}

TEST_P(EntryTransfer, ofAMissingFileKeepsBothRowsAndTheTargetsFile) {
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        entries().add(1);
        EXPECT_FALSE(run(form, 1, 2));
        EXPECT_EQ(state(), row(1) + row(target(form), 2));
        target(form).store(2, 2);
        EXPECT_FALSE(run(form, 1, 2));
        EXPECT_TRUE(entries().check(1));
        EXPECT_EQ(target(form).first(2), 2.0);
        clear();
    }
}

TEST_P(EntryTransfer, ontoADirectoryKeepsRowAndFileOfTheSource) {
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        entries().store(1, 1);
        fs::create_directory(targetPath(form, 2));
        EXPECT_FALSE(run(form, 1, 2));
        EXPECT_EQ(rows(), row(1) + row(target(form), 2));
        EXPECT_EQ(entries().first(1), 1.0);
        EXPECT_TRUE(fs::is_directory(targetPath(form, 2)));
        clear();
    }
}

TEST_P(EntryTransfer, betweenRowsThatNameOneFileIsFalseAndKeepsTheFile) {
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        entries().store(1, 1);
        target(form).add(2);
        name(2, entries().fileOf(1));
        std::string const before = files();
        EXPECT_FALSE(run(form, 1, 2));
        EXPECT_TRUE(entries().check(1) && target(form).check(2));
        EXPECT_EQ(entries().first(1), 1.0);
        EXPECT_EQ(files(), before);
        clear();
    }
}

TEST_P(EntryTransfer, neverFollowsANameOutOfTheDirectory) {
    std::string const precious = pathOf("../precious.odm");
    writeFile(precious, "precious");
    for (std::string const& outside : {std::string(), std::string("../precious.odm"), precious})
        for (auto const& form : entries().forms()) {
            SCOPED_TRACE(form.name + (" " + outside));
            for (short const leadsOut : {short{1}, short{2}}) {
                entries().store(1, 1);
                target(form).store(2, 2);
                name(leadsOut, outside);
                EXPECT_EQ(run(form, 1, 2), entries().resultOfNothingToTransfer());
                EXPECT_TRUE(entries().check(1) && target(form).check(2));
                EXPECT_EQ(readFile(precious), "precious");
                EXPECT_EQ(files(), entries().fileOf(1) + "\n" + target(form).fileOf(2) + "\n");
                clear();
            }
        }
}

TEST_P(EntryTransfer, refusesATargetThatMustNotExist) {
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        entries().store(1, 1);
        target(form).store(2, 2);
        std::string const before = state();
        EXPECT_EQ(cubeErrorOf([&] { run(form, 1, 2, true); }), form.refusal);
        EXPECT_EQ(state(), before);
        EXPECT_EQ(entries().first(1), 1.0);
        EXPECT_EQ(target(form).first(2), 2.0);
        EXPECT_TRUE(run(form, 1, 3, true));
        EXPECT_EQ(target(form).first(3), 1.0);
        clear();
    }
}

// Each form in turn, in another process; the positive control writes an entry that nobody else writes.
template <Family family>
void transferInThisProcess(int, std::string const& argument) {
    bool const isFree = argument.ends_with("|free");
    Project const own = Project::open(argument.substr(0, argument.rfind('|')));
    auto const entries = entryFamily(family, own.settings());
    auto const source = entries->copied();
    for (auto const& form : entries->forms()) {
        if (form.isByName && !form.isBetween) continue;
        if (entries->run(form, *source, 1, 2, false) != isFree) throw std::runtime_error(form.name);
        if (isFree && form.moves && !entries->store(1, 1)) throw std::runtime_error("not stored");
    }
}

ChildTask const transfersOfFourKeys("transfers of four-key cubes", transferInThisProcess<Family::fourKeys>);
ChildTask const transfersOfResults("transfers of results", transferInThisProcess<Family::results>);

TEST_P(EntryTransfer, doesNotReplaceATargetThatAnotherProcessWrites) {
    auto const& task = GetParam().family == Family::fourKeys ? transfersOfFourKeys : transfersOfResults;
    entries().store(1, 1);
    entries().store(2, 2);
    auto writing = entries().get(2, lsReadWrite);
    ASSERT_TRUE(writing);
    EXPECT_EQ(task.inProcesses(1, project().root() + "|locked"), 1);
    EXPECT_EQ(entries().first(1), 1.0);
    EXPECT_EQ(entries().first(2), 2.0);
    writing.reset();
    EXPECT_EQ(task.inProcesses(1, project().root() + "|free"), 1);
    EXPECT_EQ(entries().first(2), 1.0);
}

TEST_P(EntryTransfer, losesNothingThroughALinkToTheSameDirectory) {
    TempDir const elsewhere;
    DirectoryLink const link(entries().directory(), elsewhere.file("link"));
    auto const linked = entriesOf(project().settings(), elsewhere.file("link"));
    entries().store(1, 1);
    for (auto const& form : entries().forms()) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(entries().run(form, *linked, 1, 1, false));
        EXPECT_TRUE(entries().check(1));
        EXPECT_EQ(entries().first(1), 1.0);
        EXPECT_EQ(files(), entries().fileOf(1) + "\n");
    }
}

TEST_P(EntryTransfer, readsFromTheSourcesDirectoryAndWritesToItsOwn) {
    TempDir const elsewhere;
    auto const theirs = entriesOf(project().settings(), elsewhere.str());
    for (auto const& form : entries().forms()) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        ASSERT_TRUE(theirs->store(1, 5));
        EXPECT_TRUE(entries().run(form, *theirs, 1, 2, false));
        EXPECT_EQ(files(), entries().fileOf(2) + "\n");
        EXPECT_EQ(filesIn(elsewhere.str()), form.moves ? "" : theirs->fileOf(1) + "\n");
        EXPECT_EQ(entries().first(2), 5.0);
        EXPECT_EQ(theirs->check(1), !form.moves);
        theirs->clear(1);
        clear();
    }
}

TEST_P(EntryTransfer, betweenFileSystemsReplacesFiles) {
    std::string const elsewhere = otherFileSystem(entries().directory());
    if (elsewhere.empty()) GTEST_SKIP() << "SKIPPED: no second file system here";
    TempDir const there(elsewhere);
    auto const theirs = entriesOf(project().settings(), there.str());
    for (auto const& form : entries().forms()) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        entries().store(1, 1);
        theirs->store(2, 2);
        EXPECT_TRUE(entries().run(form, *theirs, 2, 1, false));
        EXPECT_EQ(entries().first(1), 2.0);
        EXPECT_EQ(files(), entries().fileOf(1) + "\n");
        EXPECT_EQ(filesIn(there.str()), form.moves ? "" : theirs->fileOf(2) + "\n");
        theirs->clear(2);
        clear();
    }
}

// Between the two backends and back; with SQLite as the backend, between two SQLite databases.
TEST_P(EntryTransfer, worksBetweenProjectsOnTwoDatabases) {
    TestProject delta(Backend::sqlite);
    auto const theirs = entriesOf(delta.settings());
    for (auto const& form : entries().forms()) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        project().project().makeCurrent();
        ASSERT_TRUE(theirs->store(1, 5));
        EXPECT_TRUE(entries().run(form, *theirs, 1, 2, true));
        EXPECT_EQ(rows(), row(2));
        EXPECT_EQ(entries().first(2), 5.0);
        EXPECT_EQ(filesIn(theirs->directory()), form.moves ? "" : theirs->fileOf(1) + "\n");
        EXPECT_EQ(theirs->check(1), !form.moves);

        delta.project().makeCurrent();
        EXPECT_TRUE(theirs->run(form, entries(), 2, 7, true));
        EXPECT_EQ(theirs->first(7), 5.0);
        EXPECT_EQ(rows(), form.moves ? "" : row(2));
        EXPECT_EQ(files(), form.moves ? "" : entries().fileOf(2) + "\n");
        theirs->clearAll();
        clear();
    }
}

TEST_P(EntryTransfer, refusesAnExistingTargetOnlyInItsOwnDatabase) {
    TestProject delta(Backend::sqlite);
    auto const theirs = entriesOf(delta.settings());
    project().project().makeCurrent();
    for (auto const& form : entries().forms()) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        ASSERT_TRUE(theirs->store(1, 5));
        EXPECT_TRUE(entries().run(form, *theirs, 1, 1, true));
        ASSERT_TRUE(theirs->store(1, 6));
        std::string const before = state();
        EXPECT_EQ(cubeErrorOf([&] { entries().run(form, *theirs, 1, 1, true); }), form.refusal);
        EXPECT_EQ(state(), before);
        EXPECT_EQ(entries().first(1), 5.0);
        EXPECT_EQ(theirs->first(1), 6.0);
        clear();
    }
}

TEST_P(EntryTransfer, keepsTheSourceInTheOtherDatabaseWhenItFails) {
    TestProject delta(Backend::sqlite);
    auto const theirs = entriesOf(delta.settings());
    project().project().makeCurrent();
    ASSERT_TRUE(theirs->store(1, 5));
    fs::create_directory(path(2));
    for (auto const& form : entries().forms()) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(entries().run(form, *theirs, 1, 2, false));
        EXPECT_EQ(rows(), row(2));
        EXPECT_EQ(theirs->first(1), 5.0);
        execute("delete from " + table());
    }
}

}
}
