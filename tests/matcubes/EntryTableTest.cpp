#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>

#include "host/platform/Paths.h"
#include "matcubes/MatCubesTest.h"

namespace cubes::test {
namespace {

class EntryTable : public MatCubesTest {};

CUBES_BOTH_BACKENDS(EntryTable);

// The project's register without any entry table.
class RegisterOnly : public TRkDBDataDictionary {
public:
    explicit RegisterOnly(TRkDBDataDictionary& project) : project_(project) {}
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const* table, AnsiString const& schema) override {
        return project_.BuildTable(table, schema);
    }
    bool BuildDataTables(char const*, std::vector<CountedPtr<Rktable::TRkTableProxy>>&, AnsiString const&) override {
        return false;
    }

private:
    TRkDBDataDictionary& project_;
};

// The project's tables under other aliases.
class Renamed : public TRkDBDataDictionary {
public:
    explicit Renamed(std::string alias) : alias_(std::move(alias)) {}
    bool BuildDataTables(
        char const*, std::vector<CountedPtr<Rktable::TRkTableProxy>>& tables, AnsiString const& schema) override {
        tables.push_back(CountedPtr(new Rktable::TRkTableProxy("cube4data1", schema.str(), "something else")));
        tables.push_back(CountedPtr(new Rktable::TRkTableProxy("cube4data1", schema.str(), alias_)));
        return true;
    }

private:
    std::string alias_;
};

TEST_P(EntryTable, opensByItsAliasInTheSchemaPublic) {
    EXPECT_STREQ(cubes().cubeAliasName(), "cube4data1");
    EXPECT_STREQ(cubes().getMatrixSchema().c_str(), "public");
    auto entries = cubes().Open();
    ASSERT_TRUE(entries);
    EXPECT_STREQ(entries->GetAliasPropertyWrapper().AsString().c_str(), "cube4data1");
    EXPECT_TRUE(entries->GetEof());
    EXPECT_TRUE(cubes().Close(entries));
}

TEST_P(EntryTable, isPickedByItsAliasInAnyLetterCase) {
    Renamed dictionary("CUBE4Data1");
    TRkGlobalSettings settings(TRkFString(project().matrixDirectory()), {});
    settings.Set("RkLib.DataDictionary", &dictionary);
    TRkMatCubes const others(&settings, ".odm", true);
    auto entries = others.Open();
    ASSERT_TRUE(entries);
    EXPECT_STREQ(entries->GetAliasPropertyWrapper().AsString().c_str(), "CUBE4Data1");
}

TEST_P(EntryTable, isMissingWithoutATableOfThatAlias) {
    Renamed dictionary("cube4data2");
    TRkGlobalSettings settings;
    settings.Set("RkLib.DataDictionary", &dictionary);
    EXPECT_FALSE(TRkMatCubes(&settings, ".odm", true).Open());
    EXPECT_FALSE(TRkMatCubes(nullptr, ".odm", true).Open());
    cubes().setMatrixSchema("nowhere");
    EXPECT_FALSE(cubes().Open());
    cubes().FindMatrixSchema();
    EXPECT_TRUE(cubes().Open());
}

TEST_P(EntryTable, addsARowWithItsFileNameAndACounterOfZero) {
    auto entries = cubes().Open();
    EXPECT_TRUE(cubes().Add(entries, 12, 1, 2, 3, 4, false));
    EXPECT_EQ(rows(), "12|1|2|3|4|0|12-1-2-3-4.odm\n");
    EXPECT_EQ(files(), "");
}

TEST_P(EntryTable, leavesAnEntryThatExistsAsItIs) {
    auto entries = cubes().Open();
    cubes().Add(entries, 12, 1, 2, 3, 4, false);
    project().execute("update " + table() + " set \"usageCounter\" = 5, filename = 'mine.odm'");
    EXPECT_TRUE(cubes().Add(entries, 12, 1, 2, 3, 4, false));
    EXPECT_EQ(rows(), "12|1|2|3|4|5|mine.odm\n");
}

TEST_P(EntryTable, storesZeroBasedPartsOneHigher) {
    auto entries = cubes().Open();
    EXPECT_TRUE(cubes().Add(entries, 1, 0, 0, 0, 0, true));
    EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
    EXPECT_TRUE(cubes().LookUp(entries, 1, 1, 1, 1, 1, false));
    EXPECT_TRUE(cubes().LookUp(entries, 1, 0, 0, 0, 0, true));
    EXPECT_FALSE(cubes().LookUp(entries, 1, 0, 0, 0, 0, false));
    EXPECT_FALSE(cubes().LookUp(entries, 0, 0, 0, 0, 0, true));
}

TEST_P(EntryTable, findsEntriesByTheWholeKey) {
    auto entries = cubes().Open();
    cubes().Add(entries, 1, 2, 3, 4, 5, false);
    EXPECT_TRUE(cubes().LookUp(entries, 1, 2, 3, 4, 5, false));
    EXPECT_EQ(entries->FieldByName("mode")->AsInteger(), 3);
    short const others[][5] = {{2, 2, 3, 4, 5}, {1, 1, 3, 4, 5}, {1, 2, 2, 4, 5}, {1, 2, 3, 3, 5}, {1, 2, 3, 4, 4}};
    for (auto const& k : others) EXPECT_FALSE(cubes().LookUp(entries, k[0], k[1], k[2], k[3], k[4], false));
    EXPECT_FALSE(cubes().LookUp({}, 1, 2, 3, 4, 5, false));
    EXPECT_FALSE(cubes().Add({}, 1, 2, 3, 4, 5, false));
}

TEST_P(EntryTable, addsByNameAndRegistersTheCube) {
    EXPECT_TRUE(cubes().Add("Base", 1, 2, 3, 4, false));
    EXPECT_TRUE(cubes().Add("base", 0, 1, 2, 4, true));
    EXPECT_EQ(cubeRows(), "1|Base\n");
    EXPECT_EQ(rows(), "1|1|2|3|4|0|1-1-2-3-4.odm\n1|1|2|3|5|0|1-1-2-3-5.odm\n");
    EXPECT_TRUE(cubes().Add("Alone"));
    EXPECT_EQ(cubeRows(), "1|Base\n2|Alone\n");
}

TEST_P(EntryTable, addsNothingToACubeThatCannotBeRegistered) {
    EXPECT_FALSE(cubes().Add(nullptr, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
}

TEST_P(EntryTable, addingByNameWithoutAnEntryTableIsTrueAndRegistersTheCube) {
    RegisterOnly dictionary(*cubes().DataDictionary());
    TRkGlobalSettings settings;
    settings.Set("RkLib.DataDictionary", &dictionary);
    TRkMatCubes const others(&settings, ".odm", true);
    EXPECT_FALSE(others.Open());
    EXPECT_TRUE(others.Add("Base", 1, 1, 1, 1, false));
    EXPECT_EQ(cubeRows(), "1|Base\n");
    EXPECT_STREQ(others.FileName("Base", 1, 1, 1, 1, false).c_str(), "");
    EXPECT_STREQ(others.FileName(1, 1, 1, 1, 1, false).c_str(), "");
    EXPECT_FALSE(others.Check(1, 1, 1, 1, 1, false));
    TRkAutoListT<TRkMatCubes::TKey> list;
    EXPECT_FALSE(others.Get(list));
    // Without settings nothing can be registered and nothing added, which is true all the same.
    EXPECT_TRUE(TRkMatCubes(nullptr, ".odm", true).Add("Base", 1, 1, 1, 1, false));
}

TEST_P(EntryTable, leavesNoRowWhenTheNameCannotBeMade) {
    TRkBaseCubes::Version = 3;
    auto entries = cubes().Open();
    EXPECT_THROW(cubes().Add(entries, -8, 1, 1, 1, 1, false), TRkCubesException);
    EXPECT_TRUE(cubes().Add(entries, 12, 1, 2, 3, 4, false));
    TRkBaseCubes::Version = 4;
    EXPECT_EQ(rows(), "12|1|2|3|4|0|0c01020304.odm\n");
}

TEST_P(EntryTable, namesTheFileOfTheRowInTheMatrixDirectory) {
    auto entries = cubes().Open();
    cubes().Add(entries, 1, 1, 1, 1, 1, false);
    cubes().Add("Base", 1, 1, 1, 2, false);
    EXPECT_EQ(cubes().FileName(entries, 1, 0, 0, 0, 0, true).str(), pathOf("1-1-1-1-1.odm"));
    EXPECT_EQ(cubes().FileName(1, 1, 1, 1, 1, false).str(), pathOf("1-1-1-1-1.odm"));
    EXPECT_EQ(cubes().FileName("BASE", 1, 1, 1, 2, false).str(), pathOf("1-1-1-1-2.odm"));
    EXPECT_STREQ(cubes().FileName(1, 1, 1, 1, 3, false).c_str(), "");
    EXPECT_STREQ(cubes().FileName("Other", 1, 1, 1, 1, false).c_str(), "");
    EXPECT_STREQ(cubes().FileName({}, 1, 1, 1, 1, 1, false).c_str(), "");
}

TEST_P(EntryTable, makesAStoredNamesBackslashesNative) {
    auto entries = cubes().Open();
    cubes().Add(entries, 1, 1, 1, 1, 1, false);
    project().execute("update " + table() + " set filename = 'Sub\\1.odm'");
    std::string const native = std::string("Sub") + platform::pathDelimiter() + "1.odm";
    EXPECT_EQ(cubes().FileName(1, 1, 1, 1, 1, false).str(), pathOf(native));
}

TEST_P(EntryTable, namesNoFileForARowThatLeadsOutOfTheDirectory) {
    auto entries = cubes().Open();
    cubes().Add(entries, 1, 1, 1, 1, 1, false);
    for (char const* const value : {"null", "''", "'../1.odm'", "'/etc/hosts'", "'.'"}) {
        project().execute("update " + table() + " set filename = " + value);
        EXPECT_STREQ(cubes().FileName(1, 1, 1, 1, 1, false).c_str(), "") << value;
    }
}

TEST_P(EntryTable, listsRowsFromTheCursorsPosition) {
    auto entries = cubes().Open();
    cubes().Add(entries, 2, 1, 2, 3, 4, false);
    cubes().Add(entries, 1, 4, 3, 2, 1, false);
    TRkAutoListT<TRkMatCubes::TKey> list;
    list.Add(new TRkMatCubes::TKey(99, 1, 1, 1, 1, false));
    entries->First();
    EXPECT_TRUE(cubes().Get(entries, list));
    ASSERT_EQ(list.Count(), 2);
    EXPECT_STREQ(list[0]->AsString().c_str(), "1,4,3,2,1,");
    EXPECT_STREQ(list[1]->AsString().c_str(), "2,1,2,3,4,");
    EXPECT_FALSE(list[0]->zeroBased);
    entries->First();
    entries->Next();
    EXPECT_TRUE(cubes().Get(entries, list));
    EXPECT_EQ(list.Count(), 1);
    EXPECT_FALSE(cubes().Get({}, list));
    EXPECT_EQ(list.Count(), 0);
}

TEST_P(EntryTable, listsEveryEntryWithItsCubesName) {
    cubes().Add("Base", 1, 1, 1, 1, false);
    cubes().Add("Base", 1, 1, 1, 2, false);
    auto entries = cubes().Open();
    cubes().Add(entries, 77, 1, 1, 1, 1, false);
    TRkAutoListT<TRkMatCubes::TKey> list;
    EXPECT_TRUE(cubes().Get(list));
    ASSERT_EQ(list.Count(), 3);
    EXPECT_STREQ(list[0]->AsString().c_str(), "1,1,1,1,1,Base");
    EXPECT_STREQ(list[1]->AsString().c_str(), "1,1,1,1,2,Base");
    EXPECT_STREQ(list[2]->AsString().c_str(), "77,1,1,1,1,");
}

TEST_P(EntryTable, listsWithoutNamesWhenTheRegisterIsGone) {
    cubes().Add("Base", 1, 1, 1, 1, false);
    project().project().connection()->Execute("drop table cube");
    TRkAutoListT<TRkMatCubes::TKey> list;
    EXPECT_TRUE(cubes().Get(list));
    ASSERT_EQ(list.Count(), 1);
    EXPECT_STREQ(list[0]->name.c_str(), "");
}

TEST_P(EntryTable, fillsNamesIntoTheCallersKeys) {
    cubes().Add("Base");
    TRkAutoListT<TRkMatCubes::TKey> list;
    list.Add(new TRkMatCubes::TKey(1, 1, 1, 1, 1, false));
    list.Add(new TRkMatCubes::TKey(2, 1, 1, 1, 1, false));
    list[1]->name = "stale";
    auto catalogue = cubes().TRkBaseCubes::Open();
    EXPECT_TRUE(cubes().GetNames(catalogue, list));
    EXPECT_STREQ(list[0]->name.c_str(), "Base");
    EXPECT_STREQ(list[1]->name.c_str(), "");
    EXPECT_FALSE(cubes().GetNames({}, list));
}

TEST_P(EntryTable, worksWithoutFileNameAndCounterColumns) {
    project().project().connection()->Execute("drop table " + table());
    project().project().connection()->Execute(
        "create table " + table() +
        " (cubenr smallint, purpose smallint, mode smallint, time smallint, \"user\" smallint,"
        " primary key (cubenr, purpose, mode, time, \"user\"))");
    auto entries = cubes().Open();
    EXPECT_TRUE(cubes().Add(entries, 1, 1, 1, 1, 1, false));
    EXPECT_TRUE(cubes().Check(1, 1, 1, 1, 1, false));
    EXPECT_STREQ(cubes().FileName(1, 1, 1, 1, 1, false).c_str(), "");
    EXPECT_FALSE(cubes().incUsage(1, 1, 1, 1, 1));
    EXPECT_FALSE(cubes().decUsage(1, 1, 1, 1, 1));
    EXPECT_TRUE(cubes().isCorrect(1, 1, 1, 1, 1));
    EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 1, false));
}

TEST_P(EntryTable, isMissingAlsoWhenOthersDropItWhileItIsInUse) {
    cubes().Add("Base", 1, 1, 1, 1, false);
    auto entries = cubes().Open();
    ASSERT_TRUE(entries);
    project().execute("drop table " + table());
    EXPECT_FALSE(cubes().LookUp(entries, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(cubes().Delete(short(1)));
    EXPECT_FALSE(cubes().Check(1, 1, 1, 1, 1, false));
    EXPECT_EQ(cubeRows(), "1|Base\n");
}

TEST_P(EntryTable, hasNoEntryBeyondSixteenBits) {
    auto entries = cubes().Open();
    EXPECT_FALSE(cubes().Add(entries, 1, 32767, 0, 0, 0, true));
    EXPECT_FALSE(cubes().LookUp(entries, 1, 0, 0, 0, 32767, true));
    EXPECT_TRUE(cubes().Add(entries, 1, 32767, 1, 1, 1, false));
    EXPECT_EQ(rows(), "1|32767|1|1|1|0|1-32767-1-1-1.odm\n");
}

TEST_P(EntryTable, passesOnARefusalThatIsNoRace) {
    project().project().connection()->Execute("create unique index one_file on " + table() + " (filename)");
    cubes().Add("Base", 1, 1, 1, 1, false);
    project().execute("update " + table() + " set filename = '1-1-1-1-2.odm'");
    EXPECT_THROW(cubes().Add("Base", 1, 1, 1, 2, false), TRkDatabaseException);
    EXPECT_FALSE(cubes().Check(1, 1, 1, 1, 2, false));
}

TEST_P(EntryTable, passesADatabaseErrorOn) {
    project().project().connection()->Execute("alter table " + table() + " rename column mode to way");
    EXPECT_THROW(cubes().Check(1, 1, 1, 1, 1, false), TRkDatabaseException);
    EXPECT_THROW(cubes().Add("Base", 1, 1, 1, 1, false), TRkDatabaseException);
}

TEST_P(EntryTable, hasTheDirectoryOfTheSettingsOrItsOwn) {
    char const delimiter = platform::pathDelimiter();
    std::string const expected = TRkFString::Directory(project().matrixDirectory()).str();
    EXPECT_EQ(cubes().MatrixDirectory().str(), expected);
    EXPECT_EQ(expected.back(), delimiter);
    for (char const* const own : {"/data/m", "/data/m/", "/data/m//"})
        EXPECT_EQ(TRkMatCubes(project().settings(), own, ".odm", true).MatrixDirectory().str(),
            std::string("/data/m") + delimiter);
    for (char const* const none : {static_cast<char const*>(nullptr), ""})
        EXPECT_EQ(TRkMatCubes(project().settings(), none, ".odm", true).MatrixDirectory().str(), expected);
    TRkMatCubes without(nullptr, ".odm", true);
    EXPECT_STREQ(without.MatrixDirectory().c_str(), "");
    EXPECT_TRUE(without.FindMatrixDirectory());
    EXPECT_STREQ(without.MatrixDirectory().c_str(), "");
}

TEST_P(EntryTable, worksOnTheCataloguesOwnConnection) {
    cubes().Add("Base", 1, 1, 1, 1, false);
    TestProject other(backend());
    // Entries belong to the catalogue's connection, whatever project is current.
    EXPECT_TRUE(cubes().Check(1, 1, 1, 1, 1, false));
    TRkMatCubes const copy(cubes());
    EXPECT_TRUE(copy.Check(1, 1, 1, 1, 1, false));
    cubes().SetConnection(other.project().connection());
    EXPECT_FALSE(cubes().Check(1, 1, 1, 1, 1, false));
}

TEST_P(EntryTable, knowsItsClass) {
    EXPECT_EQ(cubes().ClassID(), 0);
    EXPECT_STREQ(cubes().ClassName(), "TRkMatCubes");
    EXPECT_STREQ(TRkMatCubes::FAliasName, "matcube");
}

}
}
