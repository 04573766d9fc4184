#include <cubes/core/TRkCubesException.h>
#include <cubes/varcubes/TRkVarCubes.h>

#include <gtest/gtest.h>

#include <array>

namespace {

// Sets the format version for one test.
class FormatVersion {
public:
    explicit FormatVersion(int version) { TRkBaseCubes::Version = version; }
    ~FormatVersion() { TRkBaseCubes::Version = 4; }
};

TEST(ResultNames, joinTheNumbersInDecimal) {
    EXPECT_STREQ(TRkVarCubes::MakeFilename(1, 2, 1, 1, 0, 1).c_str(), "1-2-1-1-0-1");
    EXPECT_STREQ(TRkVarCubes::MakeFilename(1, -2, 1, 1, 32767, -32768).c_str(), "1--2-1-1-32767--32768");
}

TEST(ResultNames, areBase40PairsUpToVersionThree) {
    for (int const version : {3, 1, 0, -1}) {
        FormatVersion const set(version);
        EXPECT_STREQ(TRkVarCubes::MakeFilename(100, 1599, 0, 10, 1, 2).c_str(), "2k^^000a0102");
    }
    FormatVersion const set(5);
    EXPECT_STREQ(TRkVarCubes::MakeFilename(100, 1599, 0, 10, 1, 2).c_str(), "100-1599-0-10-1-2");
}

TEST(ResultNames, inTheOldFormCannotHoldNegativeOrLargeNumbers) {
    FormatVersion const set(3);
    EXPECT_THROW(TRkVarCubes::MakeFilename(1, 1, 1, 1, 1, -1), TRkCubesException);
    EXPECT_THROW(TRkVarCubes::MakeFilename(1600, 1, 1, 1, 1, 1), TRkCubesException);
}

using Numbers = std::array<int, 6>;
constexpr Numbers untouched = {91, 92, 93, 94, 95, 96};

struct Parsed {
    char const* stem;
    bool result;
    Numbers numbers;
};

class ResultNameParser : public testing::TestWithParam<Parsed> {};

TEST_P(ResultNameParser, readsBothFormsAtAnyVersion) {
    for (int const version : {3, 4}) {
        FormatVersion const set(version);
        Numbers n = untouched;
        EXPECT_EQ(TRkVarCubes::MakeFilename(GetParam().stem, n[0], n[1], n[2], n[3], n[4], n[5]), GetParam().result);
        EXPECT_EQ(n, GetParam().numbers);
    }
}

INSTANTIATE_TEST_SUITE_P(stems, ResultNameParser,
    testing::Values(Parsed{"1-2-1-1-0-1", true, {1, 2, 1, 1, 0, 1}}, Parsed{"12-1-2-3-4", false, untouched},
        Parsed{"1-2-3-4-5-6-7", false, untouched}, Parsed{"1--2-1-1-0-1", false, untouched},
        Parsed{"-1-2-3-4-5", true, {0, 1, 2, 3, 4, 5}}, Parsed{"-", false, untouched},
        Parsed{"a-b-c-d-e-f", true, {0, 0, 0, 0, 0, 0}}, Parsed{"1-2x-3-4-5-6.skm", true, {1, 2, 3, 4, 5, 6}},
        Parsed{"99999999999-1-2-3-4-5", true, {0, 1, 2, 3, 4, 5}},
        // Twelve characters without "-" are six pairs.
        Parsed{"2k^^000a0102", true, {100, 1599, 0, 10, 1, 2}}, Parsed{"UUUUUUUUUUUU", true, {0, 0, 0, 0, 0, 0}},
        Parsed{"", false, untouched}, Parsed{"2k^^000a010", false, untouched},
        Parsed{"2k^^000a01023", false, untouched}, Parsed{nullptr, false, untouched}));

TRkVarCubes::TKey someKey() {
    return {3, 1, 2, 4, 5, 6, 7, 13, 11, 12, 14, 15, 16, 17, true};
}

TEST(ResultKeys, giveTheirPartsAndThoseOfTheirParentByIndex) {
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

TEST(ResultKeys, keepEachPartUnderItsName) {
    TRkVarCubes::TKey const key = someKey();
    EXPECT_TRUE(key.flag);
    EXPECT_EQ(key.purpose, 1);
    EXPECT_EQ(key.mode, 2);
    EXPECT_EQ(key.parentpurpose, 11);
    EXPECT_EQ(key.parentmode, 12);
    EXPECT_STREQ(key.filename.c_str(), "");
}

TEST(ResultKeys, areShownWithTheirFileNameAtTheEnd) {
    TRkVarCubes::TKey key(3, 1, 2, 1, 1, 0, 1, 0, -1, -1, -1, -1, -1, -1, false);
    EXPECT_STREQ(key.AsString().c_str(), "3,1,2,1,1,0,1,");
    key.filename = "1-2-1-1-0-1.skm";
    EXPECT_STREQ(key.AsString().c_str(), "3,1,2,1,1,0,1,1-2-1-1-0-1.skm");
}

TEST(ResultKeys, areCopiedWhole) {
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

TEST(ResultKeys, areOrderedByTheirPartsAlone) {
    TRkVarCubes::TKey key = someKey();
    TRkVarCubes::TKey other(3, 1, 2, 4, 5, 6, 7, 0, -1, -1, -1, -1, -1, -1, false);
    other.filename = "other";
    EXPECT_EQ(TRkVarCubes::TKeySortCompare(&key, &other), 0);
    short TRkVarCubes::TKey::*const parts[] = {&TRkVarCubes::TKey::cubenr, &TRkVarCubes::TKey::purpose,
        &TRkVarCubes::TKey::mode, &TRkVarCubes::TKey::time, &TRkVarCubes::TKey::user, &TRkVarCubes::TKey::result,
        &TRkVarCubes::TKey::iteration};
    // A part decides only when those before it are equal: make the last differ first.
    for (int i = 6; i >= 0; --i) {
        other.*parts[i] = 100;
        EXPECT_EQ(TRkVarCubes::TKeySortCompare(&key, &other), -1) << i;
        EXPECT_EQ(TRkVarCubes::TKeySortCompare(&other, &key), 1) << i;
        other.*parts[i] = -100;
        EXPECT_EQ(TRkVarCubes::TKeySortCompare(&key, &other), 1) << i;
    }
}

}
