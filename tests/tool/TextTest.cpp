#include "tool/Text.h"

#include "tool/Errors.h"

#include <gtest/gtest.h>

namespace cubes::tool {

namespace {

std::string written(float value) {
    std::string text;
    appendValue(text, value);
    return text;
}

}

TEST(Escaped, makesControlCharactersVisible) {
    struct {
        char const* text;
        char const* result;
    } const texts[] = {{"Base", "Base"}, {"a\nb\tc\r", "a\\nb\\tc\\r"}, {"\x1b[31m", "\\x1b[31m"},
        {"\x7f\x01", "\\x7f\\x01"}, {"Zürich", "Zürich"}, {"", ""}};
    for (auto const& [text, expected] : texts) EXPECT_EQ(escaped(text), expected);
}

TEST(Text, writesTheShortestTextOfAValue) {
    EXPECT_EQ(written(0.1f), "0.1");
    EXPECT_EQ(written(1365.9f), "1365.9");
    EXPECT_EQ(written(0), "0");
    EXPECT_EQ(written(1e20f), "1e+20");
}

TEST(Text, roundsAValueToSinglePrecisionOnce) {
    // Rounded to double precision first, this text would become the even neighbour 1.
    EXPECT_EQ(cellValue("1.00000005960464477540", 1), 1.00000012f);
}

TEST(Text, acceptsPositiveIntegersAsZoneNumbers) {
    for (auto const* text : {"1", "2147483647", "007", "+5"}) EXPECT_TRUE(isZoneNumber(text)) << text;
    for (auto const* text : {"0", "-1", "1.0", "1e3", "", " 1", "2147483648", "+-1", "++1", "+", "x"})
        EXPECT_FALSE(isZoneNumber(text)) << text;
}

TEST(Text, comparesWordsIgnoringLetterCase) {
    EXPECT_TRUE(isSameWord("Origin", "ORIGIN"));
    EXPECT_FALSE(isSameWord("Origin", "Origins"));
    EXPECT_FALSE(isSameWord("@", "`"));
}

TEST(Text, rejectsInvalidZoneAndLinkNumbers) {
    EXPECT_EQ(parseZone("12"), 12);
    EXPECT_EQ(parseLink("4294967295"), 4294967295u);
    for (auto const* text : {"0", "-1", "centre", "1.5", ""}) EXPECT_THROW(parseZone(text), Refusal) << text;
    for (auto const* text : {"4294967296", "-10", "ten", ""}) EXPECT_THROW(parseLink(text), Refusal) << text;
}

TEST(Text, suggestsTheNearestWordUpToTwoEditsAway) {
    std::vector<std::string> const known = {"Base", "Plan 2030", "skim"};
    EXPECT_EQ(suggestion("Bsae", known), "; did you mean Base?");
    EXPECT_EQ(suggestion("basse", known), "; did you mean Base?");
    EXPECT_EQ(suggestion("Plan 2035", known), "; did you mean Plan 2030?");
    EXPECT_EQ(suggestion("skims", known), "; did you mean skim?");
    for (auto const* far : {"Unknown", "Plan 1999", "x", ""}) EXPECT_EQ(suggestion(far, known), "") << far;
    EXPECT_EQ(suggestion("Base", {}), "");
}

TEST(Text, findsTheNearestWordWithinANumberOfEdits) {
    std::vector<std::string> const known = {"Base", "skim"};
    for (auto const* const near : {"SKIM", "skm", "skims", "skin", "ksim", "skmi"})
        EXPECT_EQ(nearestTo(near, known, 1), "skim") << near;
    for (auto const* const far : {"sk", "fare", "skimmed", ""}) EXPECT_FALSE(nearestTo(far, known, 1)) << far;
    EXPECT_EQ(nearestTo("base", known, 0), "Base");
    EXPECT_FALSE(nearestTo("bse", known, 0));
}

TEST(Text, quotesWordsForTheShellWhenNecessary) {
    EXPECT_EQ(quotedForShell("Base/1/1/1/1"), "Base/1/1/1/1");
    EXPECT_EQ(quotedForShell("my city"), "'my city'");
    EXPECT_EQ(quotedForShell("it's"), "'it'\\''s'");
}

}
