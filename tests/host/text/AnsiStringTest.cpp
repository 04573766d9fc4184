#include <cubes/text/AnsiString.h>

#include <gtest/gtest.h>

#include <limits>

TEST(AnsiString, isEmptyFromNothingAndFromNull) {
    EXPECT_STREQ("", AnsiString().c_str());
    EXPECT_STREQ("", AnsiString(static_cast<char const*>(nullptr)).c_str());
    EXPECT_TRUE(AnsiString("").IsEmpty());
    EXPECT_FALSE(AnsiString(" ").IsEmpty());
}

TEST(AnsiString, writesWholeNumbersInDecimal) {
    EXPECT_STREQ("0", AnsiString(0).c_str());
    EXPECT_STREQ("-32768", AnsiString(short{-32768}).c_str());
    EXPECT_STREQ("4294967295", AnsiString(std::numeric_limits<unsigned>::max()).c_str());
    EXPECT_STREQ("-9223372036854775808", AnsiString(std::numeric_limits<long long>::min()).c_str());
}

TEST(AnsiString, countsBytes) {
    EXPECT_EQ(0, AnsiString().Length());
    EXPECT_EQ(3, AnsiString("car").Length());
    EXPECT_EQ(7, AnsiString("Zürich").Length());
}

TEST(AnsiString, isAValue) {
    AnsiString const first("car");
    AnsiString second = first;
    second += " and truck";
    EXPECT_STREQ("car", first.c_str());
    EXPECT_STREQ("car and truck", second.c_str());
    EXPECT_STREQ("cargo", (first + "go").c_str());
}

TEST(AnsiString, comparesByBytes) {
    EXPECT_EQ(AnsiString("car"), AnsiString(std::string("car")));
    EXPECT_NE(AnsiString("car"), AnsiString("Car"));
    EXPECT_LT(AnsiString("Car"), AnsiString("car"));
    EXPECT_LT(AnsiString("car"), AnsiString("cargo"));
}
