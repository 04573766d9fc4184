#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <functional>

#include "catalogue/CatalogueTest.h"

namespace cubes::test {
namespace {

// The message of the error that `action` throws; "none" when it throws none.
std::string errorOf(std::function<void()> const& action) {
    try {
        action();
    } catch (TRkCubesException const& error) {
        return error.what();
    }
    return "none";
}

constexpr char const* exists = "Cube already exists";
constexpr char const* fromMissing = "From cube doesn't exist";
constexpr char const* toMissing = "To cube doesn't exist";

class CubeTransfer : public CatalogueTest {
protected:
    void SetUp() override {
        CatalogueTest::SetUp();
        if (IsSkipped()) return;
        project().execute("insert into cube (cubenr, name) values (5, 'Five'), (7, 'Seven')");
        source_ = catalogueOf(project().settings());
    }

    TRkBaseCubes const& source() const { return source_; }

private:
    TRkBaseCubes source_ = catalogueOf(nullptr);
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

TEST_P(CubeTransfer, byNumberChecksAsItsTableSays) {
    for (ByNumber const& row : byNumber) {
        SCOPED_TRACE(testing::Message() << row.failIfExists << " " << row.from << " " << row.to);
        short from = row.from;
        short to = row.to;
        EXPECT_EQ(errorOf([&] { EXPECT_TRUE(catalogue().Copy(row.failIfExists, from, to)); }), row.error);
        EXPECT_EQ(errorOf([&] { EXPECT_TRUE(catalogue().Copy(source(), row.failIfExists, from, to)); }), row.error);
        EXPECT_EQ(errorOf([&] { EXPECT_TRUE(catalogue().Move(row.failIfExists, from, to)); }), row.error);
        EXPECT_EQ(errorOf([&] { EXPECT_TRUE(catalogue().Move(source(), row.failIfExists, from, to)); }), row.error);
        EXPECT_EQ(from, row.from);
        EXPECT_EQ(to, row.to);
    }
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n");
}

TEST_P(CubeTransfer, byNumberNeedsNoDatabaseForNegativeNumbers) {
    TRkBaseCubes const none = catalogueOf(nullptr);
    EXPECT_TRUE(none.Copy(none, false, -1, -1));
    EXPECT_EQ(errorOf([&] { none.Copy(none, false, 5, 7); }), fromMissing);
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

class Names {
public:
    short fromNr = 99;
    short toNr = 99;
};

TEST_P(CubeTransfer, byNameWithinACatalogueFailsOnlyForOneAndTheSameCube) {
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
            Names numbers;
            bool result = false;
            auto const transfer = [&] {
                result = move ? catalogue().Move(row.from, row.to, row.failIfExists, numbers.fromNr, numbers.toNr)
                              : catalogue().Copy(row.from, row.to, row.failIfExists, numbers.fromNr, numbers.toNr);
            };
            EXPECT_EQ(errorOf(transfer), row.error);
            EXPECT_EQ(result, row.result);
            EXPECT_EQ(numbers.fromNr, row.fromNr);
            EXPECT_EQ(numbers.toNr, row.toNr);
        }
    }
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n");
}

TEST_P(CubeTransfer, byNameAddsAnUnknownTarget) {
    Names numbers;
    EXPECT_TRUE(catalogue().Copy("Five", "New", true, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 5);
    EXPECT_EQ(numbers.toNr, 8);
    EXPECT_TRUE(catalogue().Move("Five", "Newer", true, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.toNr, 9);
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n8|New\n9|Newer\n");
}

TEST_P(CubeTransfer, byNameBetweenCataloguesFailsForATargetThatIsNotTheSourcesName) {
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
            Names numbers;
            bool result = false;
            auto const transfer = [&] {
                result =
                    move ? catalogue().Move(source(), row.from, row.to, row.failIfExists, numbers.fromNr, numbers.toNr)
                         : catalogue().Copy(source(), row.from, row.to, row.failIfExists, numbers.fromNr, numbers.toNr);
            };
            EXPECT_EQ(errorOf(transfer), row.error);
            EXPECT_EQ(result, row.result);
            EXPECT_EQ(numbers.fromNr, row.fromNr);
            EXPECT_EQ(numbers.toNr, row.toNr);
        }
    }
}

TEST_P(CubeTransfer, byNameBetweenCataloguesAddsAnUnknownTargetUnderTheSourcesNumber) {
    Names numbers;
    EXPECT_TRUE(catalogue().Copy(source(), "Five", "New", true, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 5);
    EXPECT_EQ(numbers.toNr, 8);
    EXPECT_EQ(rows(), "5|Five\n7|Seven\n8|New\n");
}

// A source catalogue whose register has a cube that the target's has not: its dictionary answers
// with the register of another name.
class OtherRegister : public TRkDBDataDictionary {
public:
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const*, AnsiString const&) override {
        return CountedPtr<Rktable::TRkTableProxy>(new Rktable::TRkTableProxy("othercube", "", "othercube"));
    }
};

TEST_P(CubeTransfer, byNameBetweenCataloguesGivesTheTargetCataloguesNumberOfTheSourcesName) {
    project().project().connection()->Execute(
        "create table othercube (cubenr smallint primary key, name varchar(128))");
    project().execute("insert into othercube (cubenr, name) values (2, 'Elsewhere'), (3, 'Five')");
    OtherRegister dictionary;
    TRkGlobalSettings settings;
    settings.Set("RkLib.DataDictionary", &dictionary);
    TRkBaseCubes const elsewhere = catalogueOf(&settings);

    Names numbers;
    EXPECT_TRUE(catalogue().Copy(elsewhere, "Five", "Seven", false, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 5);
    // A name that the target catalogue does not have becomes 0.
    EXPECT_TRUE(catalogue().Copy(elsewhere, "Elsewhere", "Seven", false, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 0);
    EXPECT_EQ(errorOf([&] { catalogue().Copy(elsewhere, "Elsewhere", "Seven", true, numbers.fromNr, numbers.toNr); }),
        exists);
    // With a new target the source's own number stays.
    EXPECT_TRUE(catalogue().Copy(elsewhere, "Elsewhere", "New", true, numbers.fromNr, numbers.toNr));
    EXPECT_EQ(numbers.fromNr, 2);
    EXPECT_EQ(numbers.toNr, 8);
}

}
}
