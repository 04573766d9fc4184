// Six-key results: parents, schemas, directories, and how adding, storing and removing differ from other entries.

#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/matrix/TRkMatrixException.h>
#include <cubes/text/TRkException.h>

#include <filesystem>

#include "host/platform/Paths.h"
#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class ResultTable : public VarCubesTest {
protected:
    bool addWithParent(
        TRkVarCubes& cube, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi) {
        return cube.Add(1, 1, 1, 1, 1, 1, parentcubenr, pp, pm, pt, pu, pr, pi, false);
    }
    /// Replaces the entry table by one with these columns besides the key.
    void defineTable(std::string const& columns) {
        execute("drop table " + table());
        execute("create table " + table() +
                " (cubenr smallint, purpose smallint, mode smallint, time smallint, \"user\" smallint, result smallint,"
                " iteration smallint" +
                columns + ", primary key (cubenr, purpose, mode, time, \"user\", result, iteration))");
    }
};

CUBES_BOTH_BACKENDS(ResultTable);

TEST_P(ResultTable, storesZeroBasedPartsOneHigherButNotResultIterationAndParent) {
    EXPECT_TRUE(skims().Add(0, 1, 0, 0, 5, 2, -6, 0, 1, 2, 3, 4, 5, true));
    EXPECT_EQ(rows(), "-1|1|2|1|1|5|2|0|1-2-1-1-5-2.skm\n");
    EXPECT_EQ(parents(), "-6|0|1|2|3|4|5\n");
    EXPECT_TRUE(skims().Check(0, 1, 0, 0, 5, 2, true));
    EXPECT_TRUE(skims().Check(1, 2, 1, 1, 5, 2, false));
    EXPECT_FALSE(skims().Check(0, 1, 0, 0, 4, 1, true));
    EXPECT_FALSE(skims().Check(1, 2, 1, 1, 5, 2, true));
}

TEST_P(ResultTable, leavesParentPartsOfMinusOneNullInANewRow) {
    EXPECT_TRUE(add(skims(), 1));
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    execute("delete from " + table());
    EXPECT_TRUE(addWithParent(skims(), 0, 7, -1, 8, -1, -1, 9));
    EXPECT_EQ(parents(), "NULL|7|NULL|8|NULL|NULL|9\n");
    EXPECT_EQ(read("select \"usageCounter\" from " + table()), "0\n");
}

TEST_P(ResultTable, writesParentPartsOfMinusOneToAnExistingRow) {
    addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6);
    execute("update " + table() + " set \"usageCounter\" = 5, filename = 'mine.skm'");
    EXPECT_TRUE(addWithParent(skims(), -5, 7, -1, 8, -1, -1, 9));
    EXPECT_EQ(parents(), "-5|7|-1|8|-1|-1|9\n");
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|mine.skm\n");
}

TEST_P(ResultTable, findsTheExistingRowOfAZeroBasedKeyAndChangesItsParent) {
    add(skims(), 1);
    EXPECT_TRUE(skims().Add(0, 0, 0, 0, 1, 1, -6, 0, 1, 2, 3, 4, 5, true));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_EQ(parents(), "-6|0|1|2|3|4|5\n");
}

TEST_P(ResultTable, leavesTheParentCubeOfAnExistingRowNullForZero) {
    addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6);
    EXPECT_TRUE(addWithParent(skims(), 0, 7, 8, 9, 10, 11, 12));
    EXPECT_EQ(parents(), "NULL|7|8|9|10|11|12\n");
    EXPECT_EQ(read("select \"usageCounter\" from " + table()), "0\n");
}

TEST_P(ResultTable, clearsParentAndCounterOfAnExistingRowWithoutAParentKey) {
    addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6);
    execute("update " + table() + " set \"usageCounter\" = 5");
    EXPECT_TRUE(addWithParent(skims(), 0, -1, -1, -1, -1, -1, -1));
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|NULL|1-1-1-1-1-1.skm\n");
    // A parent cube without key parts is not a parent key.
    EXPECT_TRUE(addWithParent(skims(), -6, -1, -1, -1, -1, -1, -1));
    EXPECT_EQ(parents(), "-6|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(read("select \"usageCounter\" from " + table()), "NULL\n");
}

TEST_P(ResultTable, storesNoParentWithoutParentColumns) {
    defineTable("");
    EXPECT_TRUE(addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6));
    EXPECT_TRUE(addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6));
    TRkAutoListT<TRkVarCubes::TKey> list;
    EXPECT_TRUE(skims().Get(list));
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ((*list[0])[0], 0);
    EXPECT_EQ((*list[0])[1], -1);
}

TEST_P(ResultTable, separatesTheEntriesOfDifferentKinds) {
    store(skims(), 1, 1);
    TRkPathCube paths(project().settings(), true);
    EXPECT_FALSE(paths.Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(paths.Clear(1, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(paths.Copy(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, false, false));
    EXPECT_FALSE(paths.Move(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, false, false));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
}

TEST_P(ResultTable, writesNoParentWhenAParentColumnIsMissing) {
    defineTable(", parentcubenr smallint, parentpurpose smallint, filename varchar(255)");
    EXPECT_TRUE(addWithParent(skims(), -6, 1, 2, 3, 4, 5, 6));
    EXPECT_EQ(read("select parentcubenr, parentpurpose, filename from " + table()), "NULL|NULL|1-1-1-1-1-1.skm\n");
}

TEST_P(ResultTable, addsNothingToATableThatLacksAKeyColumnAndReturnsTrue) {
    execute("alter table " + table() + " rename column result to outcome");
    EXPECT_TRUE(add(skims(), 1));
    EXPECT_EQ(read("select count(*) from " + table()), "0\n");
    EXPECT_THROW(skims().Check(1, 1, 1, 1, 1, 1, false), TRkDatabaseException);
    TRkAutoListT<TRkVarCubes::TKey> list;
    EXPECT_THROW(skims().Get(list), TRkDatabaseException);
}

TEST_P(ResultTable, hasTheWorkingDirectoryOfTheSettingsOrItsOwn) {
    std::string const delimiter(1, platform::pathDelimiter());
    EXPECT_EQ(skims().MatrixDirectory().str(), directory());
    EXPECT_EQ(directory().back(), platform::pathDelimiter());
    auto const made = [&](char const* own) {
        return TRkSkimCube(project().settings(), own, true).MatrixDirectory().str();
    };
    EXPECT_EQ(made("/data/m"), "/data/m" + delimiter);
    EXPECT_EQ(made(("/data/m" + delimiter).c_str()), "/data/m" + delimiter);
    EXPECT_EQ(made(("/data/m" + delimiter + delimiter).c_str()), "/data/m" + delimiter + delimiter);
    EXPECT_EQ(made(""), directory());
    EXPECT_EQ(made(nullptr), directory());
    skims().MatrixDirectory(TRkFString("/elsewhere"));
    EXPECT_EQ(skims().MatrixDirectory().str(), "/elsewhere" + delimiter);
    skims().MatrixDirectory(TRkFString());
    EXPECT_EQ(skims().MatrixDirectory().str(), "");
    EXPECT_TRUE(skims().FindMatrixDirectory());
    EXPECT_EQ(skims().MatrixDirectory().str(), directory());
    TRkSkimCube without(nullptr, true);
    EXPECT_FALSE(without.FindMatrixDirectory());
    EXPECT_EQ(without.MatrixDirectory().str(), "");
    EXPECT_TRUE(without.Ok());
}

TEST_P(ResultTable, isSharedByCopiesOfACube) {
    add(skims(), 1);
    TRkSkimCube const copy(skims());
    EXPECT_TRUE(copy.Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(copy.MatrixDirectory().str(), directory());
    TRkSkimCube assigned(nullptr, true);
    assigned = skims();
    EXPECT_TRUE(assigned.Check(1, 1, 1, 1, 1, 1, false));
}

class ResultSchema : public VarCubesTest {
protected:
    /// A further project on the same database, in a directory of that name.
    std::unique_ptr<Project> another(std::string const& name, std::string const& workingDirectory = {}) {
        ProjectOptions options;
        options.database = project().database().url();
        options.workingDirectory = workingDirectory;
        return std::make_unique<Project>(Project::create(directories_.file(name), options));
    }

    TempDir directories_;
};

CUBES_BOTH_BACKENDS(ResultSchema);

TEST_P(ResultSchema, isThatOfTheProject) {
    EXPECT_STREQ(skims().getMatrixSchema().c_str(), "delta");
    EXPECT_STREQ(skims().cubeAliasName(), "cube5data1");
    EXPECT_STREQ(TRkVarCubes::FAliasName, "cube5data1");
    auto entries = skims().Open();
    ASSERT_TRUE(entries);
    EXPECT_STREQ(entries->GetAliasPropertyWrapper().AsString().c_str(), "cube5data1");
    EXPECT_TRUE(skims().Close(entries));
}

TEST_P(ResultSchema, separatesProjectsOnOneDatabase) {
    auto const other = another("epsilon");
    TRkSkimCube otherSkims(other->settings(), true);
    EXPECT_STREQ(otherSkims.getMatrixSchema().c_str(), "epsilon");
    EXPECT_TRUE(add(otherSkims, 1));
    EXPECT_TRUE(add(skims(), 2));
    EXPECT_FALSE(skims().Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(otherSkims.Check(1, 1, 1, 1, 1, 2, false));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
}

TEST_P(ResultSchema, hasANumberIfAnotherProjectHasTheName) {
    auto const other = another("delta");
    TRkSkimCube otherSkims(other->settings(), true);
    EXPECT_EQ(otherSkims.getMatrixSchema().str(), other->schema());
    EXPECT_STRNE(otherSkims.getMatrixSchema().c_str(), "delta");
    EXPECT_TRUE(add(otherSkims, 1));
    EXPECT_EQ(rows(), "");
    // Settings made without a project find it in the project's file.
    TRkGlobalSettings byHand({}, other->settings()->WorkingDirectory());
    TRkSkimCube const found(&byHand, true);
    EXPECT_EQ(found.getMatrixSchema().str(), other->schema());
}

TEST_P(ResultSchema, doesNotDependOnTheDirectoryOfResults) {
    TempDir const elsewhere;
    auto const other = another("zeta", elsewhere.file("big"));
    TRkSkimCube otherSkims(other->settings(), true);
    EXPECT_STREQ(otherSkims.getMatrixSchema().c_str(), "zeta");
    EXPECT_TRUE(add(otherSkims, 1));
    EXPECT_TRUE(otherSkims.Check(1, 1, 1, 1, 1, 1, false));
}

TEST_P(ResultSchema, belongsToTheCubesProjectWhicheverIsCurrent) {
    TestDatabase const database(backend());
    ProjectOptions options;
    options.database = database.url();
    Project const other = Project::create(directories_.file("epsilon"), options);
    TRkSkimCube otherSkims(other.settings(), true);
    EXPECT_TRUE(add(otherSkims, 1));
    EXPECT_TRUE(add(skims(), 2));
    project().project().makeCurrent();
    EXPECT_TRUE(add(otherSkims, 3));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
    EXPECT_EQ(joined(database.sql("select iteration from " + database.table("epsilon", "cube5data1") + " order by 1")),
        "1\n3\n");
}

TEST_P(ResultSchema, isFormedFromTheDirectoryOutsideOfProjects) {
    TRkGlobalSettings settings({}, TRkFString(directories_.file("My Project 7/")));
    TRkSkimCube cube(&settings, true);
    EXPECT_STREQ(cube.getMatrixSchema().c_str(), "my_project_7");
    TRkGlobalSettings empty;
    TRkSkimCube without(&empty, true);
    EXPECT_FALSE(without.FindMatrixSchema());
    EXPECT_STREQ(without.getMatrixSchema().c_str(), "");
    EXPECT_FALSE(TRkSkimCube(nullptr, true).FindMatrixSchema());
}

TEST_P(ResultSchema, isDeterminedAgainOnOpeningIfItWasNotFound) {
    TRkSkimCube cube(nullptr, true);
    EXPECT_FALSE(cube.Open());
    cube.Settings(project().settings());
    EXPECT_STREQ(cube.getMatrixSchema().c_str(), "");
    EXPECT_TRUE(cube.Open());
    EXPECT_TRUE(cube.FindMatrixSchema());
    EXPECT_STREQ(cube.getMatrixSchema().c_str(), "delta");
}

TEST_P(ResultSchema, opensNoTableWithoutAConnection) {
    ASSERT_TRUE(skims().Open());
    skims().SetConnection(nullptr);
    EXPECT_FALSE(skims().Open());
    EXPECT_FALSE(skims().Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(add(skims(), 1));
    EXPECT_STREQ(skims().FileName(1, 1, 1, 1, 1, 1, false).c_str(), "");
}

// A dictionary that has the project's tables twice, the second time in another schema, or cannot build them.
class Dictionary : public TRkDBDataDictionary {
public:
    enum class Outcome { built, notBuilt, error };
    explicit Dictionary(Outcome outcome) : outcome_(outcome) {}
    bool BuildDataTables(
        char const*, std::vector<CountedPtr<Rktable::TRkTableProxy>>& tables, AnsiString const& schema) override {
        if (outcome_ == Outcome::error) throw TRkException("no tables today", 0);
        for (std::string const& name : {schema.str(), std::string("second")})
            tables.push_back(CountedPtr(new Rktable::TRkTableProxy("cube5data1", name, "cube5data1")));
        return outcome_ == Outcome::built;
    }

private:
    Outcome outcome_;
};

TEST_P(ResultSchema, opensTheFirstTableOfTheAliasAndNoneThatWasNotBuilt) {
    add(skims(), 1);
    using enum Dictionary::Outcome;
    for (auto const outcome : {built, notBuilt, error}) {
        Dictionary dictionary(outcome);
        TRkGlobalSettings settings({}, project().settings()->WorkingDirectory());
        settings.Set("RkLib.DataDictionary", &dictionary);
        TRkSkimCube const cube(&settings, true);
        EXPECT_EQ(static_cast<bool>(cube.Open()), outcome == built);
        EXPECT_EQ(cube.Check(1, 1, 1, 1, 1, 1, false), outcome == built);
    }
}

TEST_P(ResultSchema, opensNothingWhenTheTableCannotBeOpened) {
    Dictionary dictionary(Dictionary::Outcome::built);
    TRkGlobalSettings settings({}, TRkFString(directories_.file("nowhere")));
    settings.Set("RkLib.DataDictionary", &dictionary);
    EXPECT_FALSE(TRkSkimCube(&settings, true).Open());
}

class ResultStorage : public VarCubesTest {
protected:
    static TRkVarCubes plainCube(TRkGlobalSettings* settings, RkCubeTypes cubeType, RkMatrixType matrixType) {
        return {settings, ".mat", cubeType, matrixType, mkDefault, true};
    }
};

CUBES_BOTH_BACKENDS(ResultStorage);

TEST_P(ResultStorage, namesTheMatrixByItsKey) {
    EXPECT_TRUE(skims().Set(1, 2, 3, 4, 5, 6, smallMatrix(5), lsReadWrite, false));
    EXPECT_EQ(rows(), "-1|1|2|3|4|5|6|0|1-2-3-4-5-6.skm\n");
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    std::unique_ptr<TRkMatrix> const found(skims().Get(0, 1, 2, 3, 5, 6, lsRead, true));
    ASSERT_TRUE(found);
    EXPECT_STREQ(found->Name().c_str(), "[1,2,3,4,5,6]");
}

TEST_P(ResultStorage, clearsAnEntryThatExistsAndItsParent) {
    skims().Add(1, 1, 1, 1, 1, 1, -6, 1, 2, 3, 4, 5, 6, false);
    execute("update " + table() + " set filename = 'old.skm', \"usageCounter\" = 4");
    writeFile(pathOf("old.skm"), "old");
    EXPECT_TRUE(store(skims(), 1, 7));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_EQ(parents(), "NULL|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
    EXPECT_EQ(firstElement(skims(), 1), 7.0);
}

// The flag is stored as the parent cube, and the row has the key as it was passed.
TEST_P(ResultStorage, zeroBasedCreatesTheFileOfTheShiftedKeyAndTheRowOfThePassedKey) {
    EXPECT_TRUE(skims().Set(0, 0, 0, 0, 1, 1, smallMatrix(5), lsReadWrite, true));
    EXPECT_EQ(rows(), "-1|0|0|0|0|1|1|0|0-0-0-0-1-1.skm\n");
    EXPECT_EQ(parents(), "1|NULL|NULL|NULL|NULL|NULL|NULL\n");
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
    EXPECT_EQ(skims().Get(0, 0, 0, 0, 1, 1, lsRead, true), nullptr);
}

TEST_P(ResultStorage, zeroBasedClearsTheEntryOfTheShiftedKey) {
    store(skims(), 1, 1);
    EXPECT_TRUE(skims().Set(0, 0, 0, 0, 1, 1, smallMatrix(5), lsReadWrite, true));
    EXPECT_EQ(rows(), "-1|0|0|0|0|1|1|0|0-0-0-0-1-1.skm\n");
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
}

TEST_P(ResultStorage, writesTheFileEvenWithoutATable) {
    skims().setMatrixSchema("nowhere");
    EXPECT_TRUE(store(skims(), 1, 1));
    EXPECT_EQ(files(), "1-1-1-1-1-1.skm\n");
    EXPECT_EQ(open(skims(), 1, lsRead), nullptr);
}

TEST_P(ResultStorage, readsTheHeaderOfAnEntryInUse) {
    store(skims(), 1, 1);
    ASSERT_TRUE(open(skims(), 1, lsRead));
    skims().incUsage(1, 1, 1, 1, 1, 1);
    EXPECT_EQ(open(skims(), 1, lsRead), nullptr);
    EXPECT_EQ(skims().Get(1, 1, 1, 1, 1, 1, 0, 0, lsRead, false), -1.0);
    TRkMatrixHeader const* const header = skims().GetHeader(0, 0, 0, 0, 1, 1, true);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->Kind(), 2u);
    skims().decUsage(1, 1, 1, 1, 1, 1);
    EXPECT_EQ(firstElement(skims(), 1), 1.0);
}

TEST_P(ResultStorage, replacesAKindAbove31) {
    TRkMatrix source = smallMatrix(1);
    source.MatrixKind(static_cast<RkMatrixKind>(1000));
    ASSERT_TRUE(skims().Set(1, 1, 1, 1, 1, 1, source, lsReadWrite, false));
    EXPECT_EQ(skims().GetHeader(1, 1, 1, 1, 1, 1, false)->Kind(), 2u);
}

// Bit 4 of the caller's lock requests work in place; then the matrix must report that it changed.
TEST_P(ResultStorage, ontoTheMatrixsOwnFileChecksTheLockState) {
    struct {
        int opened;
        int lock;
        bool saved;
    } const cases[] = {{lsRead, lsRead, true}, {lsRead, lsReadWrite, true}, {lsRead, lsInPlace, false},
        {lsUnchanged, lsInPlace, false}, {lsReadWrite, lsInPlace | lsReadWrite, false}, {lsChanged, lsInPlace, true},
        {lsChanged, lsInPlace | lsReadWrite, true}, {lsChanged, lsRead, true}};
    for (auto const& c : cases) {
        store(skims(), 1, 1);
        auto const own = open(skims(), 1, static_cast<RkLockState>(c.opened));
        ASSERT_TRUE(own);
        own->RowAt(0, 8)[0] = 99;
        EXPECT_EQ(skims().SaveMatrix(*own, 1, 1, 1, 1, 1, 1, static_cast<RkLockState>(c.lock), false), c.saved)
            << c.opened << " " << c.lock;
        EXPECT_EQ(firstElement(skims(), 1), c.saved ? 99.0 : 1.0) << c.opened << " " << c.lock;
    }
}

TEST_P(ResultStorage, recognisesItsOwnFileInAnotherSpelling) {
    store(skims(), 1, 1);
    std::string const spelling = pathOf("./1-1-1-1-1-1.skm");
    TRkMatrix const own(spelling.c_str(), 1, "", true, mkDefault, lsRead, 0);
    ASSERT_TRUE(own.IsValid());
    EXPECT_FALSE(skims().SaveMatrix(own, 1, 1, 1, 1, 1, 1, lsInPlace, false));
    EXPECT_TRUE(skims().SaveMatrix(own, 1, 1, 1, 1, 1, 1, lsRead, false));
    EXPECT_EQ(firstElement(skims(), 1), 1.0);
}

TEST_P(ResultStorage, ontoAnotherFileIgnoresTheLockState) {
    store(skims(), 1, 1);
    auto const other = open(skims(), 1, lsUnchanged);
    ASSERT_TRUE(other);
    EXPECT_TRUE(skims().Set(1, 1, 1, 1, 1, 2, *other, lsInPlace, false));
    EXPECT_EQ(firstElement(skims(), 2), 1.0);
}

TEST_P(ResultStorage, changesAMatrixTypeOfSevenToThatOfTheCubePermanently) {
    struct {
        RkCubeTypes cubeType;
        RkMatrixType given;
        RkMatrixType written;
    } const cases[] = {{ctStopToStop, mtMatrixCube, mtStopToStop}, {ctScreenLine, mtMatrixCube, mtScreenLine},
        {ctSelectedLink, mtMatrixCube, mtSelectedLink}, {ctCordon, mtMatrixCube, mtCordon},
        {ctSkim, mtMatrixCube, mtMatrixCube}, {ctTransit, mtMatrixCube, mtMatrixCube},
        {ctPath, mtMatrixCube, mtMatrixCube}, {ctStopToStop, mtSkim, mtSkim}, {ctCordon, mtSkim, mtSkim}};
    for (auto const& c : cases) {
        TRkVarCubes cube = plainCube(project().settings(), c.cubeType, c.given);
        ASSERT_TRUE(store(cube, 1, 1));
        EXPECT_EQ(cube.GetHeader(1, 1, 1, 1, 1, 1, false)->Type(), c.written) << c.cubeType;
        TRkVarCubes later(cube);
        ASSERT_TRUE(store(later, 2, 1));
        EXPECT_EQ(later.GetHeader(1, 1, 1, 1, 1, 2, false)->Type(), c.written) << c.cubeType;
    }
}

TEST_P(ResultStorage, keepsTheMatrixTypeWhenNothingIsSaved) {
    TRkVarCubes cube = plainCube(project().settings(), ctCordon, mtMatrixCube);
    {
        TRkVarCubes other(cube);
        ASSERT_TRUE(store(other, 1, 1));
    }
    auto const own = open(cube, 1, lsRead);
    ASSERT_TRUE(own);
    struct Typed : TRkVarCubes {
        explicit Typed(TRkVarCubes const& cube) : TRkVarCubes(cube) {}
        RkMatrixType type() const { return matrixType_; }
    };
    Typed typed(cube);
    EXPECT_FALSE(typed.SaveMatrix(*own, 1, 1, 1, 1, 1, 1, lsInPlace, false));
    EXPECT_EQ(typed.type(), mtMatrixCube);
    EXPECT_TRUE(typed.SaveMatrix(*own, 1, 1, 1, 1, 1, 1, lsRead, false));
    EXPECT_EQ(typed.type(), mtCordon);
}

// The file gets the cube's own kind; an opened matrix gets the kind of the cube's type, if it has one.
TEST_P(ResultStorage, givesAnOpenedMatrixTheKindOfTheCubesType) {
    struct {
        RkCubeTypes cubeType;
        std::optional<RkMatrixKind> kind;
    } const cases[] = {{ctSkim, {}}, {ctSelectedLink, {}}, {ctCordon, {}}, {ctScreenLine, mkScreenLine},
        {ctTransit, mkTransit}, {ctPath, mkPath}, {ctStopToStop, mkStopToStop}};
    for (RkMatrixKind const own : {mkDefault, mkSkim, mkPath})
        for (auto const& c : cases) {
            TRkVarCubes cube(project().settings(), ".mat", c.cubeType, mtMatrixCube, own, true);
            ASSERT_TRUE(store(cube, 1, 1));
            EXPECT_EQ(cube.GetHeader(1, 1, 1, 1, 1, 1, false)->Kind(), static_cast<unsigned>(own));
            auto const found = open(cube, 1, lsRead);
            ASSERT_TRUE(found);
            EXPECT_EQ(found->MatrixKind(), c.kind.value_or(own)) << c.cubeType << " " << own;
        }
}

// A file created without the write bit requests no lock; in these cubes the lock state becomes 3.
TEST_P(ResultStorage, ofSelectedLinksAndScreenLinesTakesTheWriteLockForAnyLockState) {
    struct {
        RkCubeTypes cubeType;
        bool saved;
    } const cases[] = {
        {ctSkim, true}, {ctCordon, true}, {ctPath, true}, {ctSelectedLink, false}, {ctScreenLine, false}};
    TRkMatrix const writer(2, 3, mtSkim, pathOf("1-1-1-1-1-1.mat").c_str(), 1, "", "", true, mkDefault, lsReadWrite);
    ASSERT_TRUE(writer.IsValid());
    for (auto const& c : cases) {
        TRkVarCubes cube = plainCube(project().settings(), c.cubeType, mtSkim);
        EXPECT_EQ(cube.SaveMatrix(smallMatrix(2), 1, 1, 1, 1, 1, 1, lsRead, false), c.saved) << c.cubeType;
        EXPECT_FALSE(cube.SaveMatrix(smallMatrix(2), 1, 1, 1, 1, 1, 1, lsReadWrite, false)) << c.cubeType;
    }
}

// 32767 + 1 exceeds the range of 16-bit numbers.
TEST_P(ResultStorage, hasNoEntryForTheLastZeroBasedNumber) {
    short const last = 32767;
    auto table = skims().Open();
    EXPECT_FALSE(skims().LookUp(table, -1, last, 1, 1, 1, 1, 1, true));
    EXPECT_FALSE(skims().Add(table, -1, 1, last, 1, 1, 1, 1, 0, -1, -1, -1, -1, -1, -1, true));
    EXPECT_EQ(skims().Get(1, 1, last, 1, 1, 1, lsRead, true), nullptr);
    EXPECT_FALSE(skims().Set(1, 1, 1, last, 1, 1, smallMatrix(1), lsRead, true));
    EXPECT_FALSE(skims().SaveMatrix(smallMatrix(1), last, 1, 1, 1, 1, 1, lsRead, true));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files(), "");
    // Result and iteration are never shifted.
    EXPECT_TRUE(skims().Add(0, 0, 0, 0, last, last, 0, -1, -1, -1, -1, -1, -1, true));
    EXPECT_TRUE(skims().Check(1, 1, 1, 1, last, last, false));
}

TEST_P(ResultStorage, keepsTheOldEntryWhenABase40NameCannotHoldANumber) {
    ASSERT_TRUE(skims().Set(0, 1, 1, 1, 1, 1, smallMatrix(1), lsRead, false));
    {
        VersionGuard const version(3);
        EXPECT_THROW(skims().Set(-1, 0, 0, 0, 1, 1, smallMatrix(2), lsRead, true), TRkCubesException);
        EXPECT_THROW(skims().Set(1600, 1, 1, 1, 1, 1, smallMatrix(2), lsRead, false), TRkCubesException);
    }
    EXPECT_EQ(files(), "0-1-1-1-1-1.skm\n");
    EXPECT_EQ(rows(), "-1|0|1|1|1|1|1|0|0-1-1-1-1-1.skm\n");
}

// Callers must pass a matrix that is not bound to the entry's own file.
TEST_P(ResultStorage, ontoTheMatrixsOwnFileInPlaceClearsAndThenRefuses) {
    store(skims(), 1, 1);
    auto const own = open(skims(), 1, lsRead);
    EXPECT_FALSE(skims().Set(1, 1, 1, 1, 1, 1, *own, lsInPlace, false));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
    EXPECT_EQ(files(), "");
}

class ResultRemoval : public VarCubesTest {};

CUBES_BOTH_BACKENDS(ResultRemoval);

TEST_P(ResultRemoval, deletesADirectoryWithItsContent) {
    add(skims(), 1);
    fs::create_directories(pathOf("1-1-1-1-1-1.skm/inner"));
    writeFile(pathOf("1-1-1-1-1-1.skm/inner/part"), "x");
    EXPECT_TRUE(skims().Clear(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files(), "");
}

TEST_P(ResultRemoval, ofAWholeCubeDeletesDirectoriesAndRowsWithoutFiles) {
    store(skims(), 1, 1);
    for (short i = 2; i <= 4; ++i) add(skims(), i);
    fs::create_directories(pathOf("1-1-1-1-1-2.skm/inner"));
    writeFile(pathOf("1-1-1-1-1-2.skm/inner/part"), "x");
    execute("update " + table() + " set filename = null where iteration = 4");
    EXPECT_TRUE(skims().Clear());
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files(), "");
}

TEST_P(ResultRemoval, ofAWholeCubeDeletesOnlyTheEntriesOfItsKind) {
    TRkPathCube paths(project().settings(), true);
    store(paths, 1, 1);
    using Operation = bool (TRkVarCubes::*)();
    for (Operation const operation :
        {Operation(&TRkVarCubes::Clear), Operation(&TRkVarCubes::Remove), Operation(&TRkVarCubes::Delete)}) {
        for (short i = 1; i <= 3; ++i) store(skims(), i, 1);
        EXPECT_TRUE((skims().*operation)());
        EXPECT_EQ(rows(), "-6|1|1|1|1|1|1|0|1-1-1-1-1-1.ptm\n");
        EXPECT_EQ(files(), "1-1-1-1-1-1.ptm\n");
        EXPECT_TRUE((skims().*operation)());
    }
    skims().setMatrixSchema("nowhere");
    EXPECT_FALSE(skims().Clear());
}

TRkVarCubes::TKey someKey() {
    return {3, 1, 2, 4, 5, 6, 7, 13, 11, 12, 14, 15, 16, 17, true};
}

TEST(ResultKeys, returnTheirPartsAndThoseOfTheirParentByIndex) {
    TRkVarCubes::TKey const key = someKey();
    int const parts[] = {3, 1, 2, 4, 5, 6, 7};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(key(i), parts[i]);
        EXPECT_EQ(key[i], 10 + parts[i]);
    }
    EXPECT_EQ(key(-1), 7);
    EXPECT_EQ(key[-1], 7);
    for (int const index : {7, 100, -2}) {
        EXPECT_EQ(key(index), -1);
        EXPECT_EQ(key[index], -1);
    }
}

TEST(ResultKeys, storeEachPartUnderItsName) {
    TRkVarCubes::TKey const key = someKey();
    EXPECT_TRUE(key.flag);
    EXPECT_EQ(key.purpose, 1);
    EXPECT_EQ(key.mode, 2);
    EXPECT_EQ(key.parentpurpose, 11);
    EXPECT_EQ(key.parentmode, 12);
    EXPECT_STREQ(key.filename.c_str(), "");
}

TEST(ResultKeys, arePrintedWithTheirFileNameAtTheEnd) {
    TRkVarCubes::TKey key(3, 1, 2, 1, 1, 0, 1, 0, -1, -1, -1, -1, -1, -1, false);
    EXPECT_STREQ(key.AsString().c_str(), "3,1,2,1,1,0,1,");
    key.filename = "1-2-1-1-0-1.skm";
    EXPECT_STREQ(key.AsString().c_str(), "3,1,2,1,1,0,1,1-2-1-1-0-1.skm");
}

TEST(ResultKeys, areCopiedCompletely) {
    TRkVarCubes::TKey key = someKey();
    key.filename = "name";
    TRkVarCubes::TKey const copy(key);
    TRkVarCubes::TKey assigned(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, false);
    assigned = key;
    for (auto const& other : {copy, assigned}) {
        EXPECT_TRUE(other.flag);
        EXPECT_STREQ(other.AsString().c_str(), key.AsString().c_str());
        for (int i = 0; i < 7; ++i) EXPECT_EQ(other[i], key[i]);
    }
}

TEST(ResultKeys, areOrderedOnlyByTheirParts) {
    TRkVarCubes::TKey key = someKey();
    TRkVarCubes::TKey other(3, 1, 2, 4, 5, 6, 7, 0, -1, -1, -1, -1, -1, -1, false);
    other.filename = "other";
    EXPECT_EQ(TRkVarCubes::TKeySortCompare(&key, &other), 0);
    short TRkVarCubes::TKey::*const parts[] = {&TRkVarCubes::TKey::cubenr, &TRkVarCubes::TKey::purpose,
        &TRkVarCubes::TKey::mode, &TRkVarCubes::TKey::time, &TRkVarCubes::TKey::user, &TRkVarCubes::TKey::result,
        &TRkVarCubes::TKey::iteration};
    // A part decides only if those before it are equal: the last is made to differ first.
    for (int i = 6; i >= 0; --i) {
        other.*parts[i] = 100;
        EXPECT_EQ(TRkVarCubes::TKeySortCompare(&key, &other), -1) << i;
        EXPECT_EQ(TRkVarCubes::TKeySortCompare(&other, &key), 1) << i;
        other.*parts[i] = -100;
        EXPECT_EQ(TRkVarCubes::TKeySortCompare(&key, &other), 1) << i;
    }
}

}
}
