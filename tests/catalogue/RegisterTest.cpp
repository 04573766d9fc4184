#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

#include "catalogue/CatalogueTest.h"
#include "host/platform/NarrowText.h"

namespace cubes::test {
namespace {

class CubeRegister : public CatalogueTest {
protected:
    /// A UTF-8 text in this platform's narrow encoding.
    static std::string narrow(std::string const& text) { return platform::fromUtf8(text); }
};

CUBES_BOTH_BACKENDS(CubeRegister);

// A dictionary of an application that has no tables at all.
class EmptyDictionary : public TRkDBDataDictionary {
public:
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const*, AnsiString const&) override { return {}; }
};

TEST_P(CubeRegister, opensOnTheFirstRow) {
    project().execute("insert into cube (cubenr, name) values (7, 'Seven'), (3, 'Three')");
    auto table = catalogue().Open();
    ASSERT_TRUE(table);
    EXPECT_STREQ(table->GetTableName().c_str(), "cube");
    EXPECT_FALSE(table->GetEof());
    EXPECT_EQ(table->FieldByName("cubenr")->AsInteger(), 3);
}

TEST_P(CubeRegister, closesACursorAndEmptiesItsPointer) {
    auto table = catalogue().Open();
    EXPECT_TRUE(catalogue().Close(table));
    EXPECT_FALSE(table);
    EXPECT_FALSE(catalogue().Close(table));
}

TEST_P(CubeRegister, findsACubeByNumberOnAnOpenCursor) {
    project().execute("insert into cube (cubenr, name) values (3, 'Base')");
    auto table = catalogue().Open();
    EXPECT_TRUE(catalogue().LookUp(table, short(3)));
    EXPECT_STREQ(table->FieldByName("name")->AsString().c_str(), "Base");
    EXPECT_FALSE(catalogue().LookUp(table, short(4)));
    EXPECT_FALSE(catalogue().LookUp({}, short(3)));
}

TEST_P(CubeRegister, findsACubeByNameIgnoringLetterCase) {
    project().execute("insert into cube (cubenr, name) values (3, 'Base'), (4, 'Gr\xC3\xBC\xC3\x9F Z\xC3\x9Crich')");
    for (char const* const name : {"Base", "BASE", "base", "bAsE"})
        EXPECT_EQ(catalogue().CubeNameToNr(name), 3) << name;
    EXPECT_EQ(catalogue().CubeNameToNr(narrow("gr\xC3\x9C\xC3\x9F z\xC3\xBCrich").c_str()), 4);
    EXPECT_EQ(catalogue().CubeNameToNr("Bas"), 0);
    EXPECT_EQ(catalogue().CubeNameToNr("Base "), 0);
    EXPECT_EQ(catalogue().CubeNameToNr("%"), 0);
    EXPECT_EQ(catalogue().CubeNameToNr("B_se"), 0);
}

TEST_P(CubeRegister, truncatesANameToTheColumnBeforeItSearches) {
    std::string const stored(128, 'n');
    project().execute("insert into cube (cubenr, name) values (9, '" + stored + "')");
    EXPECT_EQ(catalogue().CubeNameToNr((stored + "and more").c_str()), 9);
    EXPECT_EQ(catalogue().CubeNameToNr(stored.substr(1).c_str()), 0);
}

TEST_P(CubeRegister, truncatesANameByCharactersNotBytes) {
    std::string umlauts;
    for (int i = 0; i < 128; ++i) umlauts += "\xC3\xA4";
    project().execute("insert into cube (cubenr, name) values (9, '" + umlauts + "')");
    EXPECT_EQ(catalogue().CubeNameToNr(narrow(umlauts).c_str()), 9);
    EXPECT_EQ(catalogue().CubeNameToNr(narrow(umlauts + "x").c_str()), 9);
}

TEST_P(CubeRegister, convertsBetweenNumberAndName) {
    project().execute("insert into cube (cubenr, name) values (3, 'Base'), (-2, 'SelectedLinkCube')");
    EXPECT_STREQ(catalogue().CubeNrToName(3).c_str(), "Base");
    EXPECT_STREQ(catalogue().CubeNrToName(-2).c_str(), "SelectedLinkCube");
    EXPECT_STREQ(catalogue().CubeNrToName(4).c_str(), "");
    EXPECT_EQ(catalogue().CubeNameToNr("Base"), 3);
    EXPECT_EQ(catalogue().CubeNameToNr("selectedlinkcube"), -2);
    EXPECT_EQ(catalogue().CubeNameToNr("Other"), 0);
    EXPECT_EQ(catalogue().CubeNameToNr(nullptr), 0);
}

TEST_P(CubeRegister, acceptsNamesWithQuotes) {
    char const* const name = "O'Brien \"east\"; drop table cube; --";
    ASSERT_TRUE(catalogue().Add(name));
    EXPECT_EQ(catalogue().CubeNameToNr(name), 1);
    EXPECT_EQ(rows(), std::string("1|") + name + "\n");
}

TEST_P(CubeRegister, findsEveryNegativeNumberWithoutReadingTheTable) {
    EXPECT_TRUE(catalogue().LookUp(short(-1)));
    EXPECT_TRUE(catalogue().LookUp(short(-32768)));
    EXPECT_FALSE(catalogue().LookUp(short(0)));
    EXPECT_FALSE(catalogue().LookUp(short(1)));
    project().execute("insert into cube (cubenr, name) values (1, 'Base')");
    EXPECT_TRUE(catalogue().LookUp(short(1)));
}

TEST_P(CubeRegister, usesTheProjectThatMadeItsSettingsWhicheverIsCurrent) {
    TestProject other(backend());
    catalogue().Add("Here");
    EXPECT_EQ(rows(), "1|Here\n");
    EXPECT_TRUE(catalogue().Check("Here"));
    EXPECT_FALSE(catalogueOf(other.settings()).Check("Here"));
    // The current connection is unchanged for others.
    EXPECT_EQ(getConnectionManagerInstance().CurrentConnection(), other.project().connection());
}

// Settings that no project made, with the dictionary of a project.
TEST_P(CubeRegister, withSettingsFromElsewhereIsOnTheCurrentConnectionNotTheStoredOne) {
    TRkGlobalSettings settings;
    settings.Set("RkLib.DataDictionary", catalogue().DataDictionary());
    TRkBaseCubes const elsewhere = catalogueOf(&settings);
    elsewhere.Add("Here");
    EXPECT_EQ(rows(), "1|Here\n");
    TestProject other(backend());
    EXPECT_FALSE(elsewhere.Check("Here"));
    elsewhere.Add("There");
    EXPECT_EQ(joined(other.sql("select name from cube")), "There\n");
    EXPECT_EQ(elsewhere.GetConnection(), project().project().connection());
    project().project().makeCurrent();
    EXPECT_TRUE(elsewhere.Check("Here"));
    EXPECT_EQ(rows(), "1|Here\n");
}

TEST_P(CubeRegister, isNotFoundWithoutSettingsDictionaryOrTable) {
    TRkGlobalSettings bare;
    EmptyDictionary dictionary;
    TRkGlobalSettings withEmptyDictionary;
    withEmptyDictionary.Set("RkLib.DataDictionary", &dictionary);
    TRkObject stranger;
    TRkGlobalSettings withStranger;
    withStranger.Set("RkLib.DataDictionary", &stranger);
    for (TRkGlobalSettings* const settings :
        {static_cast<TRkGlobalSettings*>(nullptr), &bare, &withEmptyDictionary, &withStranger}) {
        TRkBaseCubes none = catalogueOf(settings);
        EXPECT_FALSE(none.Open());
        EXPECT_FALSE(none.LookUp(short(1)));
        EXPECT_TRUE(none.LookUp(short(-1)));
        EXPECT_STREQ(none.CubeNrToName(1).c_str(), "");
        EXPECT_EQ(none.CubeNameToNr("Base"), 0);
        EXPECT_FALSE(none.Add("Base"));
        EXPECT_FALSE(none.Check("Base"));
        EXPECT_FALSE(none.Check(short(1)));
        EXPECT_FALSE(none.Clear("Base"));
        EXPECT_FALSE(none.Clear(short(1)));
        TRkAutoListT<TRkBaseCubes::TKey> list;
        list.Add(new TRkBaseCubes::TKey(99, "left over"));
        EXPECT_FALSE(none.Get(list));
        EXPECT_EQ(list.Count(), 0);
    }
}

TEST_P(CubeRegister, isNotFoundWhenTheTableWasDropped) {
    project().project().connection()->Execute("drop table cube");
    EXPECT_FALSE(catalogue().Open());
    EXPECT_FALSE(catalogue().Check(short(1)));
    EXPECT_FALSE(catalogue().Add("Base"));
}

TEST_P(CubeRegister, readsItsDictionaryFromTheSettings) {
    EXPECT_EQ(catalogue().DataDictionary(),
        dynamic_cast<TRkDBDataDictionary*>(project().settings()->Get("RkLib.DataDictionary")));
    ASSERT_NE(catalogue().DataDictionary(), nullptr);
    EmptyDictionary mine;
    TRkDBDataDictionary* const before = catalogue().DataDictionary();
    catalogue().DataDictionary(&mine);
    EXPECT_EQ(catalogue().DataDictionary(), &mine);
    EXPECT_FALSE(catalogue().Open());
    catalogue().DataDictionary(before);
    EXPECT_TRUE(catalogue().Open());
}

TEST_P(CubeRegister, givesTheFirstCubeNumberOne) {
    EXPECT_TRUE(catalogue().Add("Base"));
    EXPECT_EQ(rows(), "1|Base\n");
}

TEST_P(CubeRegister, givesANewCubeTheHighestNumberPlusOne) {
    project().execute("insert into cube (cubenr, name) values (7, 'Seven'), (3, 'Three')");
    EXPECT_TRUE(catalogue().Add("Eight"));
    EXPECT_EQ(rows(), "3|Three\n7|Seven\n8|Eight\n");
}

TEST_P(CubeRegister, startsAtOneAboveReservedNumbers) {
    project().execute("insert into cube (cubenr, name) values (-1, 'SkimCube'), (-6, 'PathCube')");
    EXPECT_TRUE(catalogue().Add("Base"));
    EXPECT_EQ(rows(), "-6|PathCube\n-1|SkimCube\n1|Base\n");
}

TEST_P(CubeRegister, reusesTheHighestNumberOnlyWhenItsCubeWasRemoved) {
    for (char const* const name : {"A", "B", "C"}) catalogue().Add(name);
    EXPECT_TRUE(catalogue().Clear("B"));
    EXPECT_TRUE(catalogue().Add("D"));
    EXPECT_EQ(rows(), "1|A\n3|C\n4|D\n");
    EXPECT_TRUE(catalogue().Clear(short(4)));
    EXPECT_TRUE(catalogue().Add("E"));
    EXPECT_EQ(rows(), "1|A\n3|C\n4|E\n");
}

TEST_P(CubeRegister, addsNothingForANameThatExistsInOtherLetterCase) {
    catalogue().Add("Base");
    EXPECT_TRUE(catalogue().Add("BASE"));
    EXPECT_TRUE(catalogue().Add("Base"));
    EXPECT_EQ(rows(), "1|Base\n");
}

TEST_P(CubeRegister, truncatesALongNameAndFindsItAgain) {
    std::string const name(200, 'x');
    EXPECT_TRUE(catalogue().Add(name.c_str()));
    EXPECT_TRUE(catalogue().Add(name.c_str()));
    EXPECT_EQ(rows(), "1|" + name.substr(0, 128) + "\n");
}

TEST_P(CubeRegister, acceptsTheEmptyNameButNotNull) {
    EXPECT_FALSE(catalogue().Add(nullptr));
    EXPECT_EQ(rows(), "");
    EXPECT_TRUE(catalogue().Add(""));
    EXPECT_TRUE(catalogue().Add(""));
    EXPECT_EQ(rows(), "1|\n");
}

TEST_P(CubeRegister, addsNothingWhenTheNumbersAreUsedUp) {
    project().execute("insert into cube (cubenr, name) values (32767, 'Last')");
    EXPECT_FALSE(catalogue().Add("OneMore"));
    EXPECT_TRUE(catalogue().Add("last"));
    EXPECT_EQ(rows(), "32767|Last\n");
}

TEST_P(CubeRegister, addsNumbersThatFileNamesOfTheOldFormCannotHold) {
    project().execute("insert into cube (cubenr, name) values (1599, 'x')");
    EXPECT_TRUE(catalogue().Add("y"));
    EXPECT_EQ(catalogue().CubeNameToNr("y"), 1600);
}

TEST_P(CubeRegister, checksByNameAndByNumber) {
    project().execute("insert into cube (cubenr, name) values (3, 'Base'), (-3, 'CordonCube')");
    EXPECT_TRUE(catalogue().Check("base"));
    EXPECT_TRUE(catalogue().Exist("Base"));
    EXPECT_FALSE(catalogue().Check("Other"));
    EXPECT_FALSE(catalogue().Exist("Other"));
    EXPECT_FALSE(catalogue().Check(static_cast<char const*>(nullptr)));
    EXPECT_TRUE(catalogue().Check(short(3)));
    EXPECT_FALSE(catalogue().Check(short(4)));
    // Unlike LookUp, Check searches a negative number like any other.
    EXPECT_TRUE(catalogue().Check(short(-3)));
    EXPECT_FALSE(catalogue().Check(short(-4)));
}

TEST_P(CubeRegister, clearsOnlyTheRowAndReturnsWhetherItExisted) {
    for (char const* const name : {"A", "B", "C", "D"}) catalogue().Add(name);
    EXPECT_TRUE(catalogue().Clear("a"));
    EXPECT_FALSE(catalogue().Clear("a"));
    EXPECT_TRUE(catalogue().Clear(short(2)));
    EXPECT_FALSE(catalogue().Clear(short(2)));
    EXPECT_TRUE(catalogue().Delete("C"));
    EXPECT_FALSE(catalogue().Delete("C"));
    EXPECT_TRUE(catalogue().Remove("D"));
    EXPECT_FALSE(catalogue().Remove("D"));
    EXPECT_FALSE(catalogue().Clear(static_cast<char const*>(nullptr)));
    EXPECT_EQ(rows(), "");
}

TEST_P(CubeRegister, listsAllCubesIntoAnEmptiedList) {
    TRkAutoListT<TRkBaseCubes::TKey> list;
    list.Add(new TRkBaseCubes::TKey(99, "left over"));
    EXPECT_TRUE(catalogue().Get(list));
    EXPECT_EQ(list.Count(), 0);
    project().execute("insert into cube (cubenr, name) values (7, 'Seven'), (-1, 'SkimCube'), (3, 'Three')");
    EXPECT_TRUE(catalogue().Get(list));
    ASSERT_EQ(list.Count(), 3);
    EXPECT_STREQ(list[0]->AsString().c_str(), "-1,SkimCube");
    EXPECT_STREQ(list[1]->AsString().c_str(), "3,Three");
    EXPECT_STREQ(list[2]->AsString().c_str(), "7,Seven");
}

TEST_P(CubeRegister, passesOnADatabaseError) {
    project().project().connection()->Execute("alter table cube rename column name to label");
    EXPECT_THROW(catalogue().Check("Base"), TRkDatabaseException);
    EXPECT_THROW(catalogue().Add("Base"), TRkDatabaseException);
}

}
}
