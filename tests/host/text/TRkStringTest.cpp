#include <cubes/text/TRkString.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

std::vector<std::string> pieces(TRkString const& text, char separator) {
    std::vector<std::string> result;
    for (auto const& piece : text.Split(separator)) result.push_back(piece.str());
    return result;
}

}

TEST(TRkString, isConstructedFromEveryKindOfText) {
    EXPECT_TRUE(TRkString().IsEmpty());
    EXPECT_STREQ("", TRkString(static_cast<char const*>(nullptr)).c_str());
    EXPECT_STREQ("car", TRkString("car").c_str());
    EXPECT_STREQ("car", TRkString(std::string("car")).c_str());
    EXPECT_STREQ("car", TRkString(AnsiString("car")).c_str());
    EXPECT_EQ(AnsiString("car"), TRkString("car").ToAnsiString());
}

TEST(TRkString, keepsNulBytesBetweenTheTextTypes) {
    std::string const text("a\0b", 3);
    EXPECT_EQ(3, TRkString(AnsiString(text)).Length());
    EXPECT_EQ(text, TRkString(text).ToAnsiString().str());
}

TEST(TRkString, writesWholeNumbersInDecimal) {
    EXPECT_STREQ("-1", TRkString(-1).c_str());
    EXPECT_STREQ("65535", TRkString(static_cast<unsigned short>(65535)).c_str());
    EXPECT_STREQ("18446744073709551615", TRkString(std::numeric_limits<unsigned long long>::max()).c_str());
}

TEST(TRkString, isReadByPositionWithNulOutside) {
    TRkString const text("car");
    EXPECT_EQ('c', text[0]);
    EXPECT_EQ('r', text[2]);
    EXPECT_EQ('\0', text[3]);
    EXPECT_EQ('\0', text[-1]);
    EXPECT_EQ('\0', TRkString()[0]);
}

TEST(TRkString, clipsASubStringToTheText) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    struct {
        int start;
        int count;
        char const* part;
    } const cases[] = {
        {0, 3, "012"},
        {2, 2, "23"},
        {4, 9, "4"},
        {5, 1, ""},
        {9, 1, ""},
        {0, 0, ""},
        {1, -1, ""},
        {-1, 3, "01"},
        {-3, 2, ""},
        {0, most, "01234"},
        {3, most, "34"},
        {most, most, ""},
        {least, most, ""},
        {least, least, ""},
    };
    for (auto const& c : cases)
        EXPECT_STREQ(c.part, TRkString("01234").SubString(c.start, c.count).c_str()) << c.start << ", " << c.count;
}

TEST(TRkString, trimsBlanksAndControlCharactersAtBothEnds) {
    EXPECT_STREQ("a b", TRkString(" \t\r\n a b \x01\n").Trim().c_str());
    EXPECT_STREQ("", TRkString(" \n ").Trim().c_str());
    EXPECT_STREQ("", TRkString().Trim().c_str());
    EXPECT_STREQ("ü", TRkString(" ü ").Trim().c_str());
}

TEST(TRkString, replacesEveryOccurrence) {
    struct {
        char const* text;
        char const* from;
        char const* to;
        char const* result;
    } const cases[] = {
        {"a.b.c", ".", "::", "a::b::c"},
        {"aaa", "aa", "b", "ba"},
        {"aa", "a", "aa", "aaaa"},
        {"abc", "x", "y", "abc"},
        {"abc", "", "y", "abc"},
        {"abc", "b", "", "ac"},
        {"", "a", "b", ""},
        {"abc", "abc", "", ""},
    };
    for (auto const& c : cases) EXPECT_STREQ(c.result, TRkString(c.text).Replace(c.from, c.to).c_str()) << c.text;
}

TEST(TRkString, splitsIntoOneMoreThanThereAreSeparators) {
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(Pieces({"1", "2", "3"}), pieces("1/2/3", '/'));
    EXPECT_EQ(Pieces({"", "1", "", ""}), pieces("/1//", '/'));
    EXPECT_EQ(Pieces({"1"}), pieces("1", '/'));
    EXPECT_EQ(Pieces({""}), pieces("", '/'));
}

TEST(TRkString, convertsAsciiLettersToLowerCaseOnly) {
    EXPECT_STREQ("abyz@[1Ä", TRkString("AbYZ@[1Ä").ToLower().c_str());
}

TEST(TRkString, parsesTheNumberAtItsBeginning) {
    struct {
        char const* text;
        int number;
    } const cases[] = {
        {"0", 0},
        {"12", 12},
        {"-12", -12},
        {"+12", 12},
        {"007", 7},
        {"6.FDB", 6},
        {"12abc", 12},
        {"2147483647", 2147483647},
        {"-2147483648", -2147483647 - 1},
        {"2147483648", 0},
        {"99999999999999999999", 0},
        {"", 0},
        {"abc", 0},
        {" 12", 0},
        {"+-12", 0},
        {"-+12", 0},
        {"--12", 0},
        {"-", 0},
        {"+", 0},
        {"0x10", 0},
    };
    for (auto const& c : cases) EXPECT_EQ(c.number, TRkString(c.text).ToInteger()) << c.text;
}

TEST(TRkString, appendsEveryKindOfText) {
    TRkString text("a");
    text += TRkString("b");
    text += "c";
    text += 'd';
    text += static_cast<char const*>(nullptr);
    text += short{-5};
    text += text;
    EXPECT_STREQ("abcd-5abcd-5", text.c_str());
}

TEST(TRkString, concatenatesIntoANewText) {
    TRkString const head("matrix");
    EXPECT_STREQ("matrix_12.skm", (head + '_' + 12 + ".skm").c_str());
    EXPECT_STREQ("matrix", head.c_str());
}

TEST(TRkString, comparesByBytes) {
    EXPECT_EQ(TRkString("car"), TRkString(AnsiString("car")));
    EXPECT_NE(TRkString("car"), TRkString("Car"));
    EXPECT_LT(TRkString("B"), TRkString("a"));
    EXPECT_GT(TRkString("cargo"), TRkString("car"));
}
