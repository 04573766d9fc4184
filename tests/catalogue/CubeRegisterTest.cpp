#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

#include "catalogue/CatalogueTest.h"
#include "host/platform/NarrowText.h"

namespace cubes::test {
namespace {

class CubeRegister : public CatalogueTest {
protected:
    /// A UTF-8 text as callers of this platform write it.
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

TEST_P(CubeRegister, findsACubeByNameWithoutRegardToLetterCase) {
    project().execute("insert into cube (cubenr, name) values (3, 'Base'), (4, 'Gr\xC3\xBC\xC3\x9F Z\xC3\x9Crich')");
    for (char const* const name : {"Base", "BASE", "base", "bAsE"})
        EXPECT_EQ(catalogue().CubeNameToNr(name), 3) << name;
    EXPECT_EQ(catalogue().CubeNameToNr(narrow("gr\xC3\x9C\xC3\x9F z\xC3\xBCrich").c_str()), 4);
    EXPECT_EQ(catalogue().CubeNameToNr("Bas"), 0);
    EXPECT_EQ(catalogue().CubeNameToNr("Base "), 0);
    EXPECT_EQ(catalogue().CubeNameToNr("%"), 0);
    EXPECT_EQ(catalogue().CubeNameToNr("B_se"), 0);
}

TEST_P(CubeRegister, cutsANameToTheColumnBeforeItSearches) {
    std::string const stored(128, 'n');
    project().execute("insert into cube (cubenr, name) values (9, '" + stored + "')");
    EXPECT_EQ(catalogue().CubeNameToNr((stored + "and more").c_str()), 9);
    EXPECT_EQ(catalogue().CubeNameToNr(stored.substr(1).c_str()), 0);
}

TEST_P(CubeRegister, cutsANameByCharactersNotBytes) {
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

TEST_P(CubeRegister, takesNamesWithQuotesAsTheyAre) {
    char const* const name = "O'Brien \"east\"; drop table cube; --";
    ASSERT_TRUE(catalogue().Add(name));
    EXPECT_EQ(catalogue().CubeNameToNr(name), 1);
    EXPECT_EQ(rows(), std::string("1|") + name + "\n");
}

TEST_P(CubeRegister, aNegativeNumberIsPresentWithoutAsking) {
    EXPECT_TRUE(catalogue().LookUp(short(-1)));
    EXPECT_TRUE(catalogue().LookUp(short(-32768)));
    EXPECT_FALSE(catalogue().LookUp(short(0)));
    EXPECT_FALSE(catalogue().LookUp(short(1)));
    project().execute("insert into cube (cubenr, name) values (1, 'Base')");
    EXPECT_TRUE(catalogue().LookUp(short(1)));
}

TEST_P(CubeRegister, usesTheProjectThatMadeItsSettingsWhateverIsCurrent) {
    TestProject other(backend());
    catalogue().Add("Here");
    EXPECT_EQ(rows(), "1|Here\n");
    EXPECT_TRUE(catalogue().Check("Here"));
    EXPECT_FALSE(catalogueOf(other.settings()).Check("Here"));
    // What others see as the current connection is as it was.
    EXPECT_EQ(getConnectionManagerInstance().CurrentConnection(), other.project().connection());
}

TEST_P(CubeRegister, usesTheCurrentConnectionWithSettingsFromElsewhere) {
    TRkGlobalSettings settings;
    TRkDBDataDictionary dictionary;
    settings.Set("RkLib.DataDictionary", &dictionary);
    auto const elsewhere = catalogueOf(&settings);
    elsewhere.Add("Here");
    TestProject other(backend());
    EXPECT_FALSE(elsewhere.Check("Here"));
    EXPECT_EQ(elsewhere.GetConnection(), project().project().connection());
    project().project().makeCurrent();
    EXPECT_TRUE(elsewhere.Check("Here"));
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
        EXPECT_FALSE(none.Get(list));
    }
}

TEST_P(CubeRegister, isNotFoundWhenTheTableIsGone) {
    project().project().connection()->Execute("drop table cube");
    EXPECT_FALSE(catalogue().Open());
    EXPECT_FALSE(catalogue().Check(short(1)));
    EXPECT_FALSE(catalogue().Add("Base"));
}

TEST_P(CubeRegister, knowsItsDictionaryFromTheSettings) {
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

TEST_P(CubeRegister, copiesShareSettingsAndConnection) {
    TRkBaseCubes const copy(catalogue());
    TRkBaseCubes assigned = catalogueOf(nullptr);
    assigned = catalogue();
    for (TRkBaseCubes const* const one : {&copy, static_cast<TRkBaseCubes const*>(&assigned)}) {
        EXPECT_EQ(one->Settings(), catalogue().Settings());
        EXPECT_EQ(one->GetConnection(), catalogue().GetConnection());
    }
    assigned.SetConnection(nullptr);
    EXPECT_NE(catalogue().GetConnection(), nullptr);
}

TEST(PlainCatalogue, hasTheFieldsItWasGiven) {
    TRkGlobalSettings settings;
    TRkBaseCubes catalogue(&settings, "/data/m", ".odm", ctMatrix, mtMatrixCube, mkDefault, true);
    EXPECT_EQ(catalogue.Settings(), &settings);
    EXPECT_STREQ(catalogue.MatrixDirectory().c_str(), "/data/m");
    EXPECT_STREQ(catalogue.getMatrixSchema().c_str(), "");
    catalogue.setMatrixSchema("public");
    EXPECT_STREQ(catalogue.getMatrixSchema().c_str(), "public");
    EXPECT_EQ(catalogue.ClassID(), 0);
    EXPECT_STREQ(catalogue.ClassName(), "TRkBaseCubes");
    EXPECT_FALSE(catalogue.Refresh());
    EXPECT_TRUE(catalogue.Ok());
    catalogue.Settings(nullptr);
    EXPECT_EQ(catalogue.Settings(), nullptr);
    EXPECT_EQ(catalogue.DataDictionary(), nullptr);
    EXPECT_EQ(TRkBaseCubes::Version, 4);
    EXPECT_STREQ(TRkBaseCubes::ObjectName, "cube");
}

TEST(PlainCatalogue, hasAnEmptyPathForANullDirectory) {
    TRkBaseCubes const catalogue(nullptr, nullptr, nullptr, ctMatrix, mtMatrixCube, mkDefault, false);
    EXPECT_STREQ(catalogue.MatrixDirectory().c_str(), "");
    EXPECT_EQ(catalogue.GetConnection(), getConnectionManagerInstance().CurrentConnection());
}

TEST(RegisterKey, isShownAsNumberCommaName) {
    EXPECT_STREQ(TRkBaseCubes::TKey(3, "Base").AsString().c_str(), "3,Base");
    EXPECT_STREQ(TRkBaseCubes::TKey(-1, nullptr).AsString().c_str(), "-1,");
    TRkBaseCubes::TKey const key(3, "Base");
    TRkBaseCubes::TKey copy(key);
    EXPECT_EQ(copy.cubenr, 3);
    EXPECT_STREQ(copy.name.c_str(), "Base");
    copy = TRkBaseCubes::TKey(4, "Other");
    EXPECT_STREQ(copy.AsString().c_str(), "4,Other");
}

}
}
