// File names of entries: decimal numbers, and base-40 pairs in the old form.

#include <cubes/core/TRkCubesException.h>
#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/varcubes/TRkVarCubes.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalogue/Kinds.h"
#include "support/CubeTesting.h"

namespace cubes::test {
namespace {

// As many numbers as a name has: five for four-key cubes, six for results.
using Numbers = std::vector<int>;

std::string make(Numbers const& numbers) {
    std::vector<short> n;
    for (int const number : numbers) n.push_back(static_cast<short>(number));
    return n.size() == 5 ? TRkMatCubes::MakeFilename(n[0], n[1], n[2], n[3], n[4]).str()
                         : TRkVarCubes::MakeFilename(n[0], n[1], n[2], n[3], n[4], n[5]).str();
}

bool parse(char const* stem, Numbers& n) {
    return n.size() == 5 ? TRkMatCubes::MakeFilename(stem, n[0], n[1], n[2], n[3], n[4])
                         : TRkVarCubes::MakeFilename(stem, n[0], n[1], n[2], n[3], n[4], n[5]);
}

constexpr char const* noPairs = nullptr;

struct Made {
    Numbers numbers;
    char const* decimal;
    char const* pairs;
};

Made const madeNames[] = {
    {{12, 1, 2, 3, 4}, "12-1-2-3-4", "0c01020304"},
    {{100, 1599, 0, 10, 1}, "100-1599-0-10-1", "2k^^000a01"},
    {{-8, 1, 1, 1, 1}, "-8-1-1-1-1", noPairs},
    {{1, 1, 1, 1, 1600}, "1-1-1-1-1600", noPairs},
    {{32767, -1, 0, -32768, 1600}, "32767--1-0--32768-1600", noPairs},
    {{1, 2, 1, 1, 0, 1}, "1-2-1-1-0-1", "010201010001"},
    {{100, 1599, 0, 10, 1, 2}, "100-1599-0-10-1-2", "2k^^000a0102"},
    {{1, 1, 1, 1, 1, -1}, "1-1-1-1-1--1", noPairs},
    {{1600, 1, 1, 1, 1, 1}, "1600-1-1-1-1-1", noPairs},
    {{1, -2, 1, 1, 32767, -32768}, "1--2-1-1-32767--32768", noPairs},
};

TEST(EntryNames, joinTheNumbersInDecimalFromVersionFour) {
    for (int const version : {4, 5}) {
        VersionGuard const guard(version);
        for (auto const& name : madeNames) EXPECT_EQ(make(name.numbers), name.decimal);
    }
}

TEST(EntryNames, areBase40PairsUpToVersionThreeAndHoldNoLargerNumbers) {
    for (int const version : {3, 1, 0, -1}) {
        VersionGuard const guard(version);
        for (auto const& name : madeNames) {
            if (name.pairs)
                EXPECT_EQ(make(name.numbers), name.pairs);
            else
                EXPECT_THROW(make(name.numbers), TRkCubesException) << name.decimal;
        }
    }
}

struct Parsed {
    char const* stem;
    bool result;
    Numbers numbers;
};

Numbers const untouchedFive = {91, 92, 93, 94, 95};
Numbers const untouchedSix = {91, 92, 93, 94, 95, 96};

Parsed const parsed[] = {
    {"12-1-2-3-4", true, {12, 1, 2, 3, 4}},
    {"-8-1-1-1-1", true, {-8, 1, 1, 1, 1}},
    {"12-1-2-3-4-5", true, {12, 1, 2, 3, 4}},
    // In four-key cubes a text with "-" is parsed as the decimal form even when parts are missing.
    {"12-1-2", true, untouchedFive},
    {"-", true, untouchedFive},
    {"-12", true, untouchedFive},
    {"a-b-c-d-e", true, {0, 0, 0, 0, 0}},
    {"12-1x-2-3-4.odm", true, {12, 1, 2, 3, 4}},
    {"12--2-3-4", true, {12, 0, 2, 3, 4}},
    {"99999999999-1-2-3-4", true, {0, 1, 2, 3, 4}},
    {"+8-1-1-1-1", true, {-8, 1, 1, 1, 1}},
    // Ten characters without "-" are five pairs.
    {"2k^^000a01", true, {100, 1599, 0, 10, 1}},
    {"UUUUUUUUUU", true, {0, 0, 0, 0, 0}},
    {"", false, untouchedFive},
    {"2k^^000a0", false, untouchedFive},
    {"2k^^000a011", false, untouchedFive},
    {nullptr, false, untouchedFive},

    {"1-2-1-1-0-1", true, {1, 2, 1, 1, 0, 1}},
    {"12-1-2-3-4", false, untouchedSix},
    {"1-2-3-4-5-6-7", false, untouchedSix},
    {"1--2-1-1-0-1", false, untouchedSix},
    {"-1-2-3-4-5", true, {0, 1, 2, 3, 4, 5}},
    {"-", false, untouchedSix},
    {"a-b-c-d-e-f", true, {0, 0, 0, 0, 0, 0}},
    {"1-2x-3-4-5-6.skm", true, {1, 2, 3, 4, 5, 6}},
    {"99999999999-1-2-3-4-5", true, {0, 1, 2, 3, 4, 5}},
    // Twelve characters without "-" are six pairs.
    {"2k^^000a0102", true, {100, 1599, 0, 10, 1, 2}},
    {"UUUUUUUUUUUU", true, {0, 0, 0, 0, 0, 0}},
    {"", false, untouchedSix},
    {"2k^^000a010", false, untouchedSix},
    {"2k^^000a01023", false, untouchedSix},
    {nullptr, false, untouchedSix},
};

TEST(EntryNames, areParsedInBothFormsAtAnyVersion) {
    for (int const version : {3, 4}) {
        VersionGuard const guard(version);
        for (auto const& name : parsed) {
            SCOPED_TRACE(testing::Message() << (name.stem ? name.stem : "null") << " of " << name.numbers.size());
            Numbers numbers = name.numbers.size() == 5 ? untouchedFive : untouchedSix;
            EXPECT_EQ(parse(name.stem, numbers), name.result);
            EXPECT_EQ(numbers, name.numbers);
        }
    }
}

using Key = std::vector<short>;

struct NamedKey {
    char const* name;
    Key key;
};

// Names of files with the key of their entry; none for a name that no new file has.
NamedKey const namedKeys[] = {
    {"3-1-2-3-4.odm", {3, 1, 2, 3, 4}},
    {"-8-1-2-3-4.frs", {-8, 1, 2, 3, 4}},
    {"1-2-3-4-5-0.skm", {-1, 1, 2, 3, 4, 5, 0}},
    {"1-2-3-4-5-6.s2s", {-7, 1, 2, 3, 4, 5, 6}},
    {"RouteStorage_Routes\\1-2-3-4-5-6.FDB", {-9, 1, 2, 3, 4, 5, 6}},
    {"RouteStorage_RouteData\\1-2-3-4-5-6.FDB", {-10, 1, 2, 3, 4, 5, 6}},
    {"32767-1-1-1-1.odm", {32767, 1, 1, 1, 1}},
    {"32768-1-1-1-1.odm", {}},
    {"03-1-2-3-4.odm", {}},
    {"+3-1-2-3-4.odm", {}},
    {"3-1-2-3.odm", {}},
    {"3-1-2-3-4-5.odm", {}},
    {"3-1-2-3-4-.odm", {}},
    {"3-1-2-3-x.odm", {}},
    {".odm", {}},
    {"", {}},
    {"3-1-2-3-4.omx", {}},
    {"3-1-2-3-4.odm.old", {}},
    {"-1-1-2-3-4.odm", {}},
    {"3-1-2-3-4.frs", {}},
    {"1-2-3-4-5.skm", {}},
    {"1-2-3-4-5-6.FDB", {}},
};

TEST(EntryNames, giveTheKeyOfTheirEntry) {
    for (auto const& [name, key] : namedKeys) {
        EXPECT_EQ(catalogue::keyOfFileName(name), key) << name;
        EXPECT_EQ(key.empty() ? name : catalogue::newFileName(key), name);
    }
}

}
}
