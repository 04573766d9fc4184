// The plain catalogue: its fields, base-40 numbers, and the checks before cubes are copied or moved.

#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <cstring>
#include <limits>

#include "catalogue/CatalogueTest.h"
#include "support/CubeTesting.h"

namespace cubes::test {
namespace {

constexpr char const* exists = "Cube already exists";
constexpr char const* fromMissing = "From cube doesn't exist";
constexpr char const* toMissing = "To cube doesn't exist";

// A dictionary with another register, so that two catalogues of one database have different cubes.
class OtherRegister : public TRkDBDataDictionary {
public:
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const*, AnsiString const&) override {
        return CountedPtr<Rktable::TRkTableProxy>(new Rktable::TRkTableProxy("othercube", "", "othercube"));
    }
};

class CubeTransfer : public CatalogueTest {
protected:
    void SetUp() override {
        CatalogueTest::SetUp();
        if (IsSkipped()) return;
        project().execute("insert into cube (cubenr, name) values (5, 'Five'), (7, 'Seven')");
        source_ = catalogueOf(project().settings());
        settingsElsewhere_.Set("RkLib.DataDictionary", &otherRegister_);
        elsewhere_ = catalogueOf(&settingsElsewhere_);
    }

    TRkBaseCubes const& source() const { return source_; }
    /// A catalogue with a register of its own, once makeOtherRegister() has made it.
    TRkBaseCubes const& elsewhere() const { return elsewhere_; }
    void makeOtherRegister(std::string const& cubes) {
        project().project().connection()->Execute(
            "create table othercube (cubenr smallint primary key, name varchar(128))");
        project().execute("insert into othercube (cubenr, name) values " + cubes);
    }

private:
    TRkBaseCubes source_ = catalogueOf(nullptr);
    OtherRegister otherRegister_;
    TRkGlobalSettings settingsElsewhere_;
    TRkBaseCubes elsewhere_ = catalogueOf(nullptr);
};

CUBES_BOTH_BACKENDS(CubeTransfer);

struct ByNumber {
    bool failIfExists;
    short from;
    short to;
    char const* error;
};

constexpr ByNumber byNumber[] = {
    {false, 5, 7, "none"},
    {false, 5, 8, toMissing},
    {true, 5, 8, toMissing},
    {true, 5, 7, exists},
    {true, 5, 5, "none"},
    {false, 5, 5, "none"},
    {false, 6, 7, fromMissing},
    {true, 6, 6, fromMissing},
    {false, 0, 7, fromMissing},
    // Negative numbers mean no particular cube and count as present.
    {false, -1, -1, "none"},
    {true, -1, -2, "none"},
    {true, 5, -1, "none"},
    {false, -1, 7, "none"},
    {true, -1, 7, exists},
};

TEST_P(CubeTransfer, byNumberWithinACatalogueChecksBothCubes) {
    for (ByNumber const& row : byNumber) {
        SCOPED_TRACE(testing::Message() << row.failIfExists << " " << row.from << " " << row.to);
        short from = row.from;
        short to = row.to;
        EXPECT_EQ(cubeErrorOf([&] { EXPECT_TRUE(catalogue().Copy(row.failIfExists, from, to)); }), row.error);
        EXPECT_EQ(cubeErrorOf([&] { EXPECT_TRUE(catalogue().Move(row.failIfExists, from, to)); }), row.error);
        EXPECT_EQ(from, row.from);
        EXPECT_EQ(to, row.to);
    }
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n");
}

// The source's register has 5 and 6, the target's 5 and 7.
constexpr ByNumber byNumberBetween[] = {
    {false, 5, 7, "none"},
    {false, 6, 7, "none"},
    {false, 7, 5, fromMissing},
    {true, 7, 7, fromMissing},
    {false, 5, 6, toMissing},
    {true, 5, 6, toMissing},
    {false, 6, 6, toMissing},
    {true, 6, 6, toMissing},
    {true, 5, 7, exists},
    {true, 6, 5, exists},
    {true, 5, 5, "none"},
    {true, 6, -1, "none"},
    {true, 7, -1, fromMissing},
    {false, -1, 7, "none"},
    {false, -1, 6, toMissing},
    {true, -1, 7, exists},
};

TEST_P(CubeTransfer, byNumberBetweenCataloguesLooksForEachCubeInItsOwnRegister) {
    makeOtherRegister("(5, 'Five'), (6, 'Six')");
    for (ByNumber const& row : byNumberBetween) {
        SCOPED_TRACE(testing::Message() << row.failIfExists << " " << row.from << " " << row.to);
        short from = row.from;
        short to = row.to;
        EXPECT_EQ(
            cubeErrorOf([&] { EXPECT_TRUE(catalogue().Copy(elsewhere(), row.failIfExists, from, to)); }), row.error);
        EXPECT_EQ(
            cubeErrorOf([&] { EXPECT_TRUE(catalogue().Move(elsewhere(), row.failIfExists, from, to)); }), row.error);
        EXPECT_EQ(from, row.from);
        EXPECT_EQ(to, row.to);
    }
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n");
}

TEST_P(CubeTransfer, byNumberNeedsNoDatabaseForNegativeNumbers) {
    TRkBaseCubes const none = catalogueOf(nullptr);
    EXPECT_TRUE(none.Copy(none, false, -1, -1));
    EXPECT_EQ(cubeErrorOf([&] { none.Copy(none, false, 5, 7); }), fromMissing);
}

struct ByName {
    char const* from;
    char const* to;
    bool failIfExists;
    bool result;
    short fromNr;
    short toNr;
    char const* error;
};

class CubeNumbers {
public:
    short fromNr = 99;
    short toNr = 99;
};

TEST_P(CubeTransfer, byNameWithinACatalogueFailsOnlyForTheSameCube) {
    constexpr ByName table[] = {
        {"Five", "Seven", false, true, 5, 7, "none"},
        {"Five", "Seven", true, true, 5, 7, "none"},
        {"five", "SEVEN", true, true, 5, 7, "none"},
        {"Five", "Five", true, false, 5, 5, exists},
        {"Five", "FIVE", true, false, 5, 5, exists},
        {"Five", "Five", false, true, 5, 5, "none"},
        {"Nine", "Seven", false, false, 0, 7, "none"},
        {"Nine", "Ten", true, false, 0, 0, "none"},
        {nullptr, "Seven", false, false, 0, 7, "none"},
        {"Five", nullptr, false, false, 5, 0, "none"},
        {nullptr, nullptr, true, false, 0, 0, "none"},
    };
    for (ByName const& row : table) {
        SCOPED_TRACE(testing::Message() << (row.from ? row.from : "null") << " " << (row.to ? row.to : "null"));
        for (bool const move : {false, true}) {
            CubeNumbers numbers;
            bool result = false;
            auto const transfer = [&] {
                result = move ? catalogue().Move(row.from, row.to, row.failIfExists, numbers.fromNr, numbers.toNr)
                              : catalogue().Copy(row.from, row.to, row.failIfExists, numbers.fromNr, numbers.toNr);
            };
            EXPECT_EQ(cubeErrorOf(transfer), row.error);
            EXPECT_EQ(result, row.result);
            EXPECT_EQ(numbers.fromNr, row.fromNr);
            EXPECT_EQ(numbers.toNr, row.toNr);
        }
    }
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n");
}

TEST_P(CubeTransfer, byNameAddsAnUnknownTarget) {
    CubeNumbers numbers;
    EXPECT_TRUE(catalogue().Copy("Five", "New", true, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 5);
    EXPECT_EQ(numbers.toNr, 8);
    EXPECT_TRUE(catalogue().Move("Five", "Newer", true, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.toNr, 9);
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n8|New\n9|Newer\n");
}

TEST_P(CubeTransfer, byNameBetweenCataloguesFailsForATargetOtherThanTheSourcesName) {
    constexpr ByName table[] = {
        {"Five", "Five", true, true, 5, 5, "none"},
        {"Five", "Five", false, true, 5, 5, "none"},
        {"Five", "Seven", false, true, 5, 7, "none"},
        {"Five", "Seven", true, false, 5, 7, exists},
        {"Nine", "Seven", true, false, 0, 7, "none"},
        {nullptr, "Seven", false, false, 0, 7, "none"},
        {"Five", nullptr, false, false, 5, 0, "none"},
    };
    for (ByName const& row : table) {
        SCOPED_TRACE(testing::Message() << (row.from ? row.from : "null") << " " << (row.to ? row.to : "null"));
        for (bool const move : {false, true}) {
            CubeNumbers numbers;
            bool result = false;
            auto const transfer = [&] {
                result =
                    move ? catalogue().Move(source(), row.from, row.to, row.failIfExists, numbers.fromNr, numbers.toNr)
                         : catalogue().Copy(source(), row.from, row.to, row.failIfExists, numbers.fromNr, numbers.toNr);
            };
            EXPECT_EQ(cubeErrorOf(transfer), row.error);
            EXPECT_EQ(result, row.result);
            EXPECT_EQ(numbers.fromNr, row.fromNr);
            EXPECT_EQ(numbers.toNr, row.toNr);
        }
    }
}

TEST_P(CubeTransfer, byNameBetweenCataloguesAddsAnUnknownTargetUnderTheSourcesNumber) {
    CubeNumbers numbers;
    EXPECT_TRUE(catalogue().Copy(source(), "Five", "New", true, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 5);
    EXPECT_EQ(numbers.toNr, 8);
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n8|New\n");
}

TEST_P(CubeTransfer, byNameBetweenCataloguesReturnsTheTargetCataloguesNumberOfTheSourcesName) {
    makeOtherRegister("(2, 'Elsewhere'), (3, 'Five')");

    CubeNumbers numbers;
    EXPECT_TRUE(catalogue().Copy(elsewhere(), "Five", "Seven", false, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 5);
    // A name that the target catalogue does not have becomes 0.
    EXPECT_TRUE(catalogue().Copy(elsewhere(), "Elsewhere", "Seven", false, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 0);
    EXPECT_EQ(
        cubeErrorOf([&] { catalogue().Copy(elsewhere(), "Elsewhere", "Seven", true, numbers.fromNr, numbers.toNr); }),
        exists);
    // With a new target the source's own number is kept.
    EXPECT_TRUE(catalogue().Copy(elsewhere(), "Elsewhere", "New", true, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 2);
    EXPECT_EQ(numbers.toNr, 8);
}

class PlainCatalogueCopy : public CatalogueTest {};

CUBES_BOTH_BACKENDS(PlainCatalogueCopy);

TEST_P(PlainCatalogueCopy, sharesSettingsAndConnection) {
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

TEST(RegisterKey, isPrintedAsNumberCommaName) {
    EXPECT_STREQ(TRkBaseCubes::TKey(3, "Base").AsString().c_str(), "3,Base");
    EXPECT_STREQ(TRkBaseCubes::TKey(-1, nullptr).AsString().c_str(), "-1,");
    TRkBaseCubes::TKey const key(3, "Base");
    TRkBaseCubes::TKey copy(key);
    EXPECT_EQ(copy.cubenr, 3);
    EXPECT_STREQ(copy.name.c_str(), "Base");
    copy = TRkBaseCubes::TKey(4, "Other");
    EXPECT_STREQ(copy.AsString().c_str(), "4,Other");
}

struct Coded {
    short number;
    char const* characters;
};

void PrintTo(Coded const& coded, std::ostream* out) {
    *out << coded.number << " as " << coded.characters;
}

class Base40 : public testing::TestWithParam<Coded> {};

TEST_P(Base40, encodesNumbersAsTwoCharacters) {
    EXPECT_STREQ(TRkBaseCubes::ShortTo40T(GetParam().number), GetParam().characters);
}

TEST_P(Base40, decodesItsOwnOutput) {
    EXPECT_EQ(TRkBaseCubes::cnvrt40TToShort(GetParam().characters, 0, 2), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(numbers, Base40,
    testing::Values(Coded{0, "00"}, Coded{9, "09"}, Coded{10, "0a"}, Coded{29, "0t"}, Coded{30, "0v"}, Coded{34, "0z"},
        Coded{35, "0_"}, Coded{36, "0@"}, Coded{37, "0#"}, Coded{38, "0&"}, Coded{39, "0^"}, Coded{40, "10"},
        Coded{100, "2k"}, Coded{1199, "t^"}, Coded{1200, "v0"}, Coded{1599, "^^"}),
    [](auto const& coded) { return std::to_string(coded.param.number); });

TEST(Base40, hasFortyDigitsAndNoU) {
    EXPECT_STREQ(TRkBaseCubes::letters, "0123456789abcdefghijklmnopqrstvwxyz_@#&^");
    EXPECT_EQ(std::strlen(TRkBaseCubes::letters), 40u);
    EXPECT_EQ(std::strchr(TRkBaseCubes::letters, 'u'), nullptr);
}

TEST(Base40, decodesEveryNumberItEncodes) {
    for (short number = 0; number < 1600; ++number)
        ASSERT_EQ(TRkBaseCubes::cnvrt40TToShort(TRkBaseCubes::ShortTo40T(number), 0, 2), number);
}

TEST(Base40, refusesNumbersThatTwoCharactersCannotHold) {
    for (short const number : {short(1600), short(1601), std::numeric_limits<short>::max(), short(-1), short(-8),
             std::numeric_limits<short>::min()}) {
        try {
            TRkBaseCubes::ShortTo40T(number);
            ADD_FAILURE() << number << " was encoded";
        } catch (TRkCubesException const& error) {
            EXPECT_STREQ(error.what(), "IntTo40T> Only 2 positions reserved! Maximum value is 1599");
        }
    }
}

TEST(Base40, returnsOneBufferThatTheNextCallOverwrites) {
    char const* const first = TRkBaseCubes::ShortTo40T(9);
    char const* const second = TRkBaseCubes::ShortTo40T(100);
    EXPECT_EQ(first, second);
    EXPECT_STREQ(first, "2k");
}

struct Decoded {
    char const* text;
    int start;
    int count;
    short number;
};

void PrintTo(Decoded const& decoded, std::ostream* out) {
    *out << decoded.count << " characters from " << decoded.start << " of " << (decoded.text ? decoded.text : "null");
}

class Base40Decoder : public testing::TestWithParam<Decoded> {};

TEST_P(Base40Decoder, neverFails) {
    EXPECT_EQ(TRkBaseCubes::cnvrt40TToShort(GetParam().text, GetParam().start, GetParam().count), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(texts, Base40Decoder,
    testing::Values(Decoded{"1u", 0, 2, 40}, Decoded{"1U", 0, 2, 40}, Decoded{"1A", 0, 2, 40},
        Decoded{"abc", 1, 2, 11 * 40 + 12}, Decoded{"7", 0, 2, 7}, Decoded{"^^", 0, 0, 0}, Decoded{nullptr, 0, 2, 0},
        Decoded{"", 0, 2, 0}, Decoded{"12", 2, 2, 0}, Decoded{"12", 99, 2, 0}, Decoded{"12", -1, 2, 0},
        Decoded{"12", 0, -1, 0}, Decoded{"12", 0, 99, 42},
        // 39 * 40 * 40 + 39 * 40 + 39 = 63999, kept in 16 bits and read as signed.
        Decoded{"^^^", 0, 3, short(63999 - 65536)},
        // The value of five digits is taken modulo 65536.
        Decoded{"10000", 0, 5, short(2560000 % 65536)}));

}
}
