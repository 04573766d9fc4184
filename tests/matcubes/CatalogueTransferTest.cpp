// Copies and moves between catalogues of other directories and other databases.

#include <filesystem>

#include "matcubes/TransferTest.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class CatalogueTransfer : public TransferTest {
protected:
    static bool store(TRkMatCubes& cubes, End at, float first) {
        return cubes.Add(cubes.Open(), at.cubenr, 1, 1, 1, at.user, false) &&
               cubes.SaveMatrix(matrix(first), at.cubenr, 1, 1, 1, at.user, lsNone, false);
    }
    static double first(TRkMatCubes const& cubes, End at) {
        std::unique_ptr<TRkMatrix> const found(cubes.Get(at.cubenr, 1, 1, 1, at.user, lsRead, false));
        return found ? found->RowAt(0, 8)[0] : -1.0;
    }
    static bool has(TRkMatCubes const& cubes, End at) { return cubes.Check(at.cubenr, 1, 1, 1, at.user, false); }
    static std::string filesOf(TRkMatCubes const& cubes) { return filesIn(cubes.MatrixDirectory().str()); }
};

CUBES_BOTH_BACKENDS(CatalogueTransfer);

TEST_P(CatalogueTransfer, readsInTheDirectoryOfTheSourceAndWritesInItsOwn) {
    TempDir const elsewhere;
    TRkMatCubes theirs(project().settings(), elsewhere.str().c_str(), ".odm", true);
    for (auto const& form : forms) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        ASSERT_TRUE(store(theirs, end(1, 1), 5));
        EXPECT_TRUE(form.call(cubes(), theirs, end(1, 1), end(2, 1), {}));
        EXPECT_EQ(files(), "2-1-1-1-1.odm\n");
        EXPECT_EQ(filesOf(theirs), form.moves ? "" : "1-1-1-1-1.odm\n");
        EXPECT_EQ(first(cubes(), end(2, 1)), 5.0);
        EXPECT_EQ(has(theirs, end(1, 1)), !form.moves);
        theirs.Clear(1);
        clear();
    }
}

TEST_P(CatalogueTransfer, givesTheFileItsOwnExtension) {
    TRkMatCubes fares(project().settings(), ".frs", true);
    ASSERT_TRUE(store(cubes(), end(1, 1), 5));
    EXPECT_TRUE(fares.Copy(cubes(), 1, 1, 1, 1, 1, 2, 1, 1, 1, 1, false, false));
    EXPECT_EQ(files(), "1-1-1-1-1.odm\n2-1-1-1-1.frs\n");
}

// One table for both: the row of an entry that keeps its key is the row of its source.
TEST_P(CatalogueTransfer, toAnotherDirectoryUnderTheSameKeyCopiesTheFile) {
    TempDir const elsewhere;
    TRkMatCubes theirs(project().settings(), elsewhere.str().c_str(), ".odm", true);
    ASSERT_TRUE(store(theirs, end(1, 1), 5));
    EXPECT_TRUE(cubes().Copy(theirs, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, false, false));
    EXPECT_EQ(first(cubes(), end(1, 1)), 5.0);
    EXPECT_EQ(first(theirs, end(1, 1)), 5.0);
    EXPECT_TRUE(cubes().Move(theirs, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, false, false));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files() + filesOf(theirs), "1-1-1-1-1.odm\n");
}

// Between the two backends and back; on the one that needs no server, between two databases of it.
TEST_P(CatalogueTransfer, worksBetweenProjectsOfTwoDatabases) {
    TestProject delta(Backend::sqlite);
    TRkMatCubes theirs(delta.settings(), ".odm", true);
    theirs.Add("Base");
    theirs.Add("Other");
    for (auto const& form : forms) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        project().project().makeCurrent();
        ASSERT_TRUE(store(theirs, end(1, 1), 5));
        EXPECT_TRUE(form.call(cubes(), theirs, end(1, 1), end(2, 1), {}));
        EXPECT_EQ(rows(), "2|1|1|1|1|0|2-1-1-1-1.odm\n");
        EXPECT_EQ(first(cubes(), end(2, 1)), 5.0);
        EXPECT_EQ(filesOf(theirs), form.moves ? "" : "1-1-1-1-1.odm\n");
        EXPECT_EQ(has(theirs, end(1, 1)), !form.moves);

        delta.project().makeCurrent();
        EXPECT_TRUE(form.call(theirs, cubes(), end(2, 1), end(1, 7), {}));
        EXPECT_EQ(first(theirs, end(1, 7)), 5.0);
        EXPECT_EQ(rows(), form.moves ? "" : "2|1|1|1|1|0|2-1-1-1-1.odm\n");
        EXPECT_EQ(files(), form.moves ? "" : "2-1-1-1-1.odm\n");
        theirs.Clear(1);
        cubes().Clear(2);
    }
}

TEST_P(CatalogueTransfer, refusesATargetOfItsOwnDatabaseOnly) {
    TestProject delta(Backend::sqlite);
    TRkMatCubes theirs(delta.settings(), ".odm", true);
    project().project().makeCurrent();
    End const at = end(1, 1);
    for (auto const& form : forms) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        ASSERT_TRUE(store(theirs, at, 5));
        EXPECT_TRUE(form.call(cubes(), theirs, at, at, {true, false}));
        ASSERT_TRUE(store(theirs, at, 6));
        std::string const before = state();
        EXPECT_EQ(messageOf([&] { form.call(cubes(), theirs, at, at, {true, false}); }), form.refusal);
        EXPECT_EQ(state(), before);
        EXPECT_EQ(first(cubes(), at), 5.0);
        EXPECT_EQ(first(theirs, at), 6.0);
        clear();
    }
}

// The register is the current project's for both: there the names of the other's cubes count not.
TEST_P(CatalogueTransfer, takesNamesAndNumbersOfCubesFromTheCurrentProject) {
    TestProject delta(Backend::sqlite);
    TRkMatCubes theirs(delta.settings(), ".odm", true);
    theirs.Add("Theirs");
    ASSERT_TRUE(store(theirs, end(1, 1), 5));
    ASSERT_TRUE(store(theirs, end(2, 1), 6));
    project().project().makeCurrent();
    EXPECT_FALSE(cubes().Copy(theirs, "Theirs", 1, 1, 1, 1, "Base", 1, 1, 1, 1, false, false));
    EXPECT_TRUE(cubes().Copy(theirs, "Other", 1, 1, 1, 1, "Base", 1, 1, 1, 1, false, false));
    EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
    EXPECT_EQ(first(cubes(), end(1, 1)), 6.0);
}

TEST_P(CatalogueTransfer, failingLeavesTheOtherDatabaseAsItWas) {
    TestProject delta(Backend::sqlite);
    TRkMatCubes theirs(delta.settings(), ".odm", true);
    project().project().makeCurrent();
    ASSERT_TRUE(store(theirs, end(1, 1), 5));
    fs::create_directory(pathOf("2-1-1-1-1.odm"));
    for (auto const& form : forms) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(form.call(cubes(), theirs, end(1, 1), end(2, 1), {}));
        EXPECT_EQ(rows(), "2|1|1|1|1|0|2-1-1-1-1.odm\n");
        EXPECT_EQ(first(theirs, end(1, 1)), 5.0);
        project().execute("delete from " + table());
    }
}

}
}
