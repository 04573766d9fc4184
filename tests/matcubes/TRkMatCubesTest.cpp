// Four-key matrix cubes: operations by name, lists, directories, and how storing and removing differ from other
// entries.

#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>

#include <filesystem>

#include "host/platform/Paths.h"
#include "matcubes/MatCubesTest.h"
#include "support/Damage.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class MatCubes : public MatCubesTest {
protected:
    /// A stored entry of cube 1, "Base", whose first element is 1.
    void storeBase() { store("Base", 1, 1); }
    void store(char const* cube, short user, float first) {
        ASSERT_TRUE(cubes().Set(cube, 1, 1, 1, user, smallMatrix(first), lsReadWrite, false));
    }
    std::unique_ptr<TRkMatrix> open(RkLockState lock) {
        return std::unique_ptr<TRkMatrix>(cubes().Get(1, 1, 1, 1, 1, lock, false));
    }
};

CUBES_BOTH_BACKENDS(MatCubes);

TEST_P(MatCubes, returnTheirClassAndTable) {
    EXPECT_EQ(cubes().ClassID(), 0);
    EXPECT_STREQ(cubes().ClassName(), "TRkMatCubes");
    EXPECT_STREQ(TRkMatCubes::FAliasName, "matcube");
    EXPECT_STREQ(cubes().cubeAliasName(), "cube4data1");
    EXPECT_STREQ(cubes().getMatrixSchema().c_str(), "public");
}

TEST_P(MatCubes, haveTheDirectoryOfTheSettingsOrTheirOwn) {
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

TEST_P(MatCubes, leaveAnExistingEntryUnchangedWhenTheyAddIt) {
    auto entries = cubes().Open();
    cubes().Add(entries, 12, 1, 2, 3, 4, false);
    project().execute("update " + table() + " set \"usageCounter\" = 5, filename = 'mine.odm'");
    EXPECT_TRUE(cubes().Add(entries, 12, 1, 2, 3, 4, false));
    EXPECT_EQ(rows(), "12|1|2|3|4|5|mine.odm\n");
}

TEST_P(MatCubes, addByNameAndRegisterTheCube) {
    EXPECT_TRUE(cubes().Add("Base", 1, 2, 3, 4, false));
    EXPECT_TRUE(cubes().Add("base", 0, 1, 2, 4, true));
    EXPECT_EQ(cubeRows(), "1|Base\n");
    EXPECT_EQ(rows(), "1|1|2|3|4|0|1-1-2-3-4.odm\n1|1|2|3|5|0|1-1-2-3-5.odm\n");
    EXPECT_TRUE(cubes().Add("Alone"));
    EXPECT_EQ(cubeRows(), "1|Base\n2|Alone\n");
}

TEST_P(MatCubes, addNothingToACubeThatCannotBeRegistered) {
    EXPECT_FALSE(cubes().Add(nullptr, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
}

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

TEST_P(MatCubes, registerTheCubeOfAnAddedEntryEvenWithoutAnEntryTable) {
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
    // Without settings no cube can be registered and no entry added; the result is true nevertheless.
    EXPECT_TRUE(TRkMatCubes(nullptr, ".odm", true).Add("Base", 1, 1, 1, 1, false));
}

TEST_P(MatCubes, passOnADatabaseErrorWhenTheyAddByName) {
    project().project().connection()->Execute("alter table " + table() + " rename column mode to other");
    EXPECT_THROW(cubes().Check(1, 1, 1, 1, 1, false), TRkDatabaseException);
    EXPECT_THROW(cubes().Add("Base", 1, 1, 1, 1, false), TRkDatabaseException);
}

TEST_P(MatCubes, nameTheFileOfAnEntryByTheNameOfItsCube) {
    cubes().Add("Base", 1, 1, 1, 2, false);
    EXPECT_EQ(cubes().FileName("BASE", 1, 1, 1, 2, false).str(), pathOf("1-1-1-1-2.odm"));
    EXPECT_EQ(cubes().FileName("Base", 0, 0, 0, 1, true).str(), pathOf("1-1-1-1-2.odm"));
    EXPECT_STREQ(cubes().FileName("Base", 1, 1, 1, 1, false).c_str(), "");
    EXPECT_STREQ(cubes().FileName("Other", 1, 1, 1, 2, false).c_str(), "");
}

TEST_P(MatCubes, listRowsFromTheCursorsPosition) {
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

TEST_P(MatCubes, listEveryEntryWithItsCubesName) {
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

TEST_P(MatCubes, listWithoutNamesWhenTheRegisterIsGone) {
    cubes().Add("Base", 1, 1, 1, 1, false);
    project().project().connection()->Execute("drop table cube");
    TRkAutoListT<TRkMatCubes::TKey> list;
    EXPECT_TRUE(cubes().Get(list));
    ASSERT_EQ(list.Count(), 1);
    EXPECT_STREQ(list[0]->name.c_str(), "");
}

TEST_P(MatCubes, setNamesInTheCallersKeys) {
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

TEST_P(MatCubes, setByNumberOnlyWhereAnEntryExists) {
    cubes().Add("Base");
    EXPECT_FALSE(cubes().Set(1, 1, 1, 1, 1, smallMatrix(1), lsReadWrite, false));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files().find(".odm"), std::string::npos);
}

TEST_P(MatCubes, keepRowAndCounterWhenTheySetByNumber) {
    storeBase();
    cubes().incUsage(1, 1, 1, 1, 1);
    EXPECT_TRUE(cubes().Set(1, 0, 0, 0, 0, smallMatrix(7), lsReadWrite, true));
    EXPECT_EQ(rows(), "1|1|1|1|1|1|1-1-1-1-1.odm\n");
    EXPECT_EQ(firstElement(1, 1, 1, 1, 1), 7.0);
}

TEST_P(MatCubes, clearTheEntryFirstWhenTheySetByName) {
    storeBase();
    cubes().incUsage(1, 1, 1, 1, 1);
    EXPECT_TRUE(cubes().Set("Base", 0, 0, 0, 0, smallMatrix(7), lsReadWrite, true));
    EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
    EXPECT_EQ(firstElement(1, 1, 1, 1, 1), 7.0);
}

TEST_P(MatCubes, setNothingByNameWithoutARegister) {
    TRkMatCubes none(nullptr, project().matrixDirectory().c_str(), ".odm", true);
    EXPECT_FALSE(none.Set("Base", 1, 1, 1, 1, smallMatrix(1), lsReadWrite, false));
    EXPECT_EQ(files().find(".odm"), std::string::npos);
}

TEST_P(MatCubes, giveAMatrixItsCubesNameAndKeyAsDisplayName) {
    storeBase();
    for (auto* const found : {cubes().Get(1, 1, 1, 1, 1, lsRead, false), cubes().Get(1, 0, 0, 0, 0, lsRead, true),
             cubes().Get("BASE", 0, 0, 0, 0, lsRead, true)}) {
        std::unique_ptr<TRkMatrix> const owned(found);
        ASSERT_TRUE(owned);
        EXPECT_STREQ(owned->Name().c_str(), "Base [1,1,1,1]");
        EXPECT_EQ(owned->StateCode(), 1);
    }
}

TEST_P(MatCubes, readByTheNameOfTheCube) {
    storeBase();
    EXPECT_EQ(cubes().Get(1, 1, 1, 1, 2, lsRead, false), nullptr);
    EXPECT_EQ(cubes().Get("Other", 1, 1, 1, 1, lsRead, false), nullptr);
    EXPECT_EQ(cubes().Get(nullptr, 1, 1, 1, 1, lsRead, false), nullptr);
    EXPECT_EQ(cubes().Get("Base", 1, 1, 1, 1, 1, 1, lsRead, false), 12.0);
    EXPECT_EQ(cubes().Get("Other", 1, 1, 1, 1, 0, 0, lsRead, false), -1.0);
    ASSERT_NE(cubes().GetHeader("Base", 0, 0, 0, 0, true), nullptr);
    EXPECT_EQ(cubes().GetHeader("base", 1, 1, 1, 1, false)->Kind(), 0u);
    EXPECT_EQ(cubes().GetHeader("Other", 1, 1, 1, 1, false), nullptr);
}

TEST_P(MatCubes, saveForAnyCubeNumber) {
    EXPECT_TRUE(cubes().SaveMatrix(smallMatrix(3), 9, 0, 0, 0, 0, lsReadWrite, true));
    EXPECT_TRUE(fs::exists(pathOf("9-1-1-1-1.odm")));
    EXPECT_EQ(rows(), "");
}

TEST_P(MatCubes, saveNothingOntoTheMatrixsOwnFile) {
    storeBase();
    for (int const lock : {0, 1, 8}) {
        auto const own = open(static_cast<RkLockState>(lock));
        ASSERT_TRUE(own);
        own->RowAt(0, 8)[0] = 99;
        std::string const before = readFile(pathOf("1-1-1-1-1.odm"));
        EXPECT_FALSE(cubes().SaveMatrix(*own, 1, 1, 1, 1, 1, lsReadWrite, false)) << lock;
        EXPECT_FALSE(cubes().Set(1, 1, 1, 1, 1, *own, lsReadWrite, false)) << lock;
        EXPECT_EQ(readFile(pathOf("1-1-1-1-1.odm")), before) << lock;
    }
}

TEST_P(MatCubes, copyTheFileOfAnUnchangedMatrixAndReturnFalse) {
    storeBase();
    auto const source = open(lsUnchanged);
    ASSERT_TRUE(source);
    writeFile(pathOf("2-1-1-1-1.odm"), "replaced");
    EXPECT_FALSE(cubes().SaveMatrix(*source, 2, 1, 1, 1, 1, lsReadWrite, false));
    EXPECT_EQ(readFile(pathOf("2-1-1-1-1.odm")), readFile(pathOf("1-1-1-1-1.odm")));
}

// A new file gets a checksum of its own, which would hide the damage; a copy of the bytes keeps the old one.
TEST_P(MatCubes, writeNoDamagedMatrixButCopyItsFile) {
    storeBase();
    store("Base", 2, 5);
    damage(pathOf("1-1-1-1-1.odm"), "table[0, 1] = 12.5");
    std::string const before = readFile(pathOf("1-1-1-1-2.odm"));
    EXPECT_FALSE(cubes().Set(1, 1, 1, 1, 2, *open(lsRead), lsReadWrite, false));
    EXPECT_EQ(readFile(pathOf("1-1-1-1-2.odm")), before);
    cubes().Set(1, 1, 1, 1, 2, *open(lsUnchanged), lsReadWrite, false);
    EXPECT_EQ(readFile(pathOf("1-1-1-1-2.odm")), readFile(pathOf("1-1-1-1-1.odm")));
}

TEST_P(MatCubes, doNotCopyOntoAFileThatAnotherObjectWrites) {
    storeBase();
    ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 2, smallMatrix(2), lsReadWrite, false));
    std::string const before = readFile(pathOf("1-1-1-1-2.odm"));
    auto const source = open(lsUnchanged);
    TRkMatrix const writer(
        2, 3, mtMatrixCube, pathOf("1-1-1-1-2.odm").c_str(), 1, "", "", true, mkDefault, lsReadWrite);
    ASSERT_TRUE(writer.IsValid());
    EXPECT_FALSE(cubes().SaveMatrix(*source, 1, 1, 1, 1, 2, lsReadWrite, false));
    EXPECT_EQ(readFile(pathOf("1-1-1-1-2.odm")), before);
}

TEST_P(MatCubes, writeAnUnchangedMatrixWhoseFileIsMissing) {
    TempDir const elsewhere;
    storeBase();
    auto const source = open(lsUnchanged);
    ASSERT_TRUE(source);
    fs::rename(pathOf("1-1-1-1-1.odm"), elsewhere.file("1-1-1-1-1.odm"));
    EXPECT_TRUE(cubes().SaveMatrix(*source, 1, 1, 1, 1, 2, lsReadWrite, false));
    cubes().Add("Base", 1, 1, 1, 2, false);
    EXPECT_EQ(firstElement(1, 1, 1, 1, 2), 1.0);
}

TEST_P(MatCubes, keepAKindAbove31AndReplaceAnyOther) {
    struct {
        int source;
        unsigned stored;
    } const kinds[] = {{0, 0}, {5, 0}, {31, 0}, {32, 32}, {1000, 1000}, {-1, 0xFFFFFFFFu}};
    for (auto const& kind : kinds) {
        TRkMatrix source = smallMatrix(1);
        source.MatrixKind(static_cast<RkMatrixKind>(kind.source));
        ASSERT_TRUE(cubes().Set("Base", 1, 1, 1, 1, source, lsReadWrite, false));
        EXPECT_EQ(cubes().GetHeader("Base", 1, 1, 1, 1, false)->Kind(), kind.stored) << kind.source;
    }
}

TEST_P(MatCubes, removeAnEntryByNameByEachOfThreeFunctions) {
    bool (TRkMatCubes::*const functions[])(char const*, short, short, short, short, bool)
        const = {&TRkMatCubes::Clear, &TRkMatCubes::Delete, &TRkMatCubes::Remove};
    for (auto const function : functions) {
        storeBase();
        EXPECT_FALSE((cubes().*function)("Other", 1, 1, 1, 1, false));
        EXPECT_TRUE((cubes().*function)("BASE", 0, 0, 0, 0, true));
        EXPECT_EQ(rows() + files(), "");
        EXPECT_FALSE((cubes().*function)("Base", 1, 1, 1, 1, false));
    }
}

TEST_P(MatCubes, removeTheRowOfADirectoryAndKeepTheDirectory) {
    cubes().Add("Base", 1, 1, 1, 1, false);
    fs::create_directory(pathOf("1-1-1-1-1.odm"));
    EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 1, false));
    EXPECT_EQ(rows(), "");
    EXPECT_TRUE(fs::is_directory(pathOf("1-1-1-1-1.odm")));
}

TEST_P(MatCubes, clearACubeByNumberAndByName) {
    store("A", 1, 1);
    store("A", 2, 2);
    store("B", 1, 3);
    EXPECT_TRUE(cubes().Clear(short(1)));
    EXPECT_EQ(rows(), "2|1|1|1|1|0|2-1-1-1-1.odm\n");
    EXPECT_TRUE(cubes().Clear("b"));
    EXPECT_EQ(rows() + files(), "");
    EXPECT_EQ(cubeRows(), "1|A\n2|B\n");
}

TEST_P(MatCubes, clearACubeBeforeTheyRemoveItFromTheRegister) {
    for (char const* const name : {"A", "B", "C", "D"}) store(name, 1, 1);
    EXPECT_TRUE(cubes().Delete(short(1)));
    EXPECT_TRUE(cubes().Delete("b"));
    EXPECT_TRUE(cubes().Remove(short(3)));
    EXPECT_TRUE(cubes().Remove("D"));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(cubeRows(), "");
    EXPECT_FALSE(cubes().Delete(short(1)));
    EXPECT_FALSE(cubes().Remove("A"));
}

TEST_P(MatCubes, keepTheCubeInTheRegisterWithoutAnEntryTable) {
    cubes().Add("Base");
    project().project().connection()->Execute("drop table " + table());
    EXPECT_FALSE(cubes().Clear(short(1)));
    EXPECT_FALSE(cubes().Delete(short(1)));
    EXPECT_FALSE(cubes().Delete("Base"));
    EXPECT_FALSE(cubes().Clear(1, 1, 1, 1, 1, false));
    EXPECT_EQ(cubeRows(), "1|Base\n");
}

TEST_P(MatCubes, checkCubesAndEntries) {
    store("Base", 1, 1);
    EXPECT_TRUE(cubes().Check(short(1)));
    EXPECT_TRUE(cubes().Check("base"));
    EXPECT_FALSE(cubes().Check(short(2)));
    EXPECT_FALSE(cubes().Check("Other"));
    EXPECT_TRUE(cubes().Check(1, 0, 0, 0, 0, true));
    EXPECT_TRUE(cubes().Check("Base", 1, 1, 1, 1, false));
    EXPECT_FALSE(cubes().Check("Base", 1, 1, 1, 1, true));
    EXPECT_FALSE(cubes().Check("Other", 1, 1, 1, 1, false));
}

TEST(MatCubesKeys, returnTheirPartsByIndex) {
    TRkMatCubes::TKey const key(12, 1, 2, 3, 4, true);
    int const parts[] = {12, 1, 2, 3, 4};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(key(i), parts[i]);
        EXPECT_EQ(key[i], parts[i]);
    }
    EXPECT_EQ(key(-1), 5);
    EXPECT_EQ(key[-1], 5);
    EXPECT_EQ(key(5), -1);
    EXPECT_EQ(key[-2], -1);
    EXPECT_TRUE(key.zeroBased);
    EXPECT_EQ(key.purpose, 1);
    EXPECT_EQ(key.mode, 2);
}

TEST(MatCubesKeys, arePrintedWithTheirNameAtTheEnd) {
    TRkMatCubes::TKey key(3, 1, 2, 5, 6, false);
    EXPECT_STREQ(key.AsString().c_str(), "3,1,2,5,6,");
    key.name = "Base";
    EXPECT_STREQ(key.AsString().c_str(), "3,1,2,5,6,Base");
    TRkMatCubes::TKey const copy(key);
    EXPECT_STREQ(copy.AsString().c_str(), "3,1,2,5,6,Base");
    TRkMatCubes::TKey assigned(0, 0, 0, 0, 0, true);
    assigned = key;
    EXPECT_FALSE(assigned.zeroBased);
    EXPECT_STREQ(assigned.AsString().c_str(), "3,1,2,5,6,Base");
}

}
}
