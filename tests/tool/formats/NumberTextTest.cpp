#include "tool/formats/NumberText.h"

#include <gtest/gtest.h>

namespace cubes::tool {

namespace {

std::string shortest(float value) {
    std::string text;
    appendValue(text, value);
    return text;
}

}

TEST(NumberText, writesTheShortestTextOfAValue) {
    EXPECT_EQ(shortest(0.1f), "0.1");
    EXPECT_EQ(shortest(1365.9f), "1365.9");
    EXPECT_EQ(shortest(0), "0");
    EXPECT_EQ(shortest(1e20f), "1e+20");
}

TEST(NumberText, readsAValueDirectlyInSinglePrecision) {
    // Rounded to double precision first this text would become the even neighbour 1.
    EXPECT_EQ(cellValue("1.00000005960464477540", {"f", 1}), 1.00000012f);
}

TEST(NumberText, takesWholeNumbersFromOneOnAsZones) {
    for (auto const* text : {"1", "2147483647", "007", "+5"}) EXPECT_TRUE(isZoneNumber(text)) << text;
    for (auto const* text : {"0", "-1", "1.0", "1e3", "", " 1", "2147483648", "+-1", "++1", "+", "x"})
        EXPECT_FALSE(isZoneNumber(text)) << text;
}

TEST(NumberText, comparesWordsWithoutRegardToCase) {
    EXPECT_TRUE(isSameWord("Origin", "ORIGIN"));
    EXPECT_FALSE(isSameWord("Origin", "Origins"));
    EXPECT_FALSE(isSameWord("@", "`"));
}

}
