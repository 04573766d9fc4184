#include <cubes/core/TRkCubesException.h>
#include <cubes/matcubes/TRkMatCubes.h>

#include <gtest/gtest.h>

#include <array>

namespace {

// Sets the format version for one test.
class FormatVersion {
public:
    explicit FormatVersion(int version) { TRkBaseCubes::Version = version; }
    ~FormatVersion() { TRkBaseCubes::Version = 4; }
};

TEST(EntryNames, joinTheNumbersInDecimal) {
    EXPECT_STREQ(TRkMatCubes::MakeFilename(12, 1, 2, 3, 4).c_str(), "12-1-2-3-4");
    EXPECT_STREQ(TRkMatCubes::MakeFilename(-8, 1, 1, 1, 1).c_str(), "-8-1-1-1-1");
    EXPECT_STREQ(TRkMatCubes::MakeFilename(32767, -1, 0, -32768, 1600).c_str(), "32767--1-0--32768-1600");
}

TEST(EntryNames, areBase40PairsUpToVersionThree) {
    for (int const version : {3, 1, 0, -1}) {
        FormatVersion const set(version);
        EXPECT_STREQ(TRkMatCubes::MakeFilename(100, 1599, 0, 10, 1).c_str(), "2k^^000a01");
    }
    FormatVersion const set(5);
    EXPECT_STREQ(TRkMatCubes::MakeFilename(100, 1599, 0, 10, 1).c_str(), "100-1599-0-10-1");
}

TEST(EntryNames, inTheOldFormCannotHoldNegativeOrLargeNumbers) {
    FormatVersion const set(3);
    EXPECT_THROW(TRkMatCubes::MakeFilename(-8, 1, 1, 1, 1), TRkCubesException);
    EXPECT_THROW(TRkMatCubes::MakeFilename(1, 1, 1, 1, 1600), TRkCubesException);
}

using Numbers = std::array<int, 5>;
constexpr Numbers untouched = {91, 92, 93, 94, 95};

struct Parsed {
    char const* stem;
    bool result;
    Numbers numbers;
};

class EntryNameParser : public testing::TestWithParam<Parsed> {};

TEST_P(EntryNameParser, readsBothFormsAtAnyVersion) {
    for (int const version : {3, 4}) {
        FormatVersion const set(version);
        Numbers n = untouched;
        EXPECT_EQ(TRkMatCubes::MakeFilename(GetParam().stem, n[0], n[1], n[2], n[3], n[4]), GetParam().result);
        EXPECT_EQ(n, GetParam().numbers);
    }
}

INSTANTIATE_TEST_SUITE_P(stems, EntryNameParser,
    testing::Values(Parsed{"12-1-2-3-4", true, {12, 1, 2, 3, 4}}, Parsed{"-8-1-1-1-1", true, {-8, 1, 1, 1, 1}},
        Parsed{"12-1-2-3-4-5", true, {12, 1, 2, 3, 4}},
        // A text with "-" is taken for the decimal form even when pieces are missing.
        Parsed{"12-1-2", true, untouched}, Parsed{"-", true, untouched}, Parsed{"-12", true, untouched},
        Parsed{"a-b-c-d-e", true, {0, 0, 0, 0, 0}}, Parsed{"12-1x-2-3-4.odm", true, {12, 1, 2, 3, 4}},
        Parsed{"12--2-3-4", true, {12, 0, 2, 3, 4}}, Parsed{"99999999999-1-2-3-4", true, {0, 1, 2, 3, 4}},
        Parsed{"+8-1-1-1-1", true, {-8, 1, 1, 1, 1}},
        // Ten characters without "-" are five pairs.
        Parsed{"2k^^000a01", true, {100, 1599, 0, 10, 1}}, Parsed{"UUUUUUUUUU", true, {0, 0, 0, 0, 0}},
        Parsed{"", false, untouched}, Parsed{"2k^^000a0", false, untouched}, Parsed{"2k^^000a011", false, untouched},
        Parsed{nullptr, false, untouched}));

TEST(EntryKeys, giveTheirPartsByIndex) {
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

TEST(EntryKeys, areShownWithTheirNameAtTheEnd) {
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
