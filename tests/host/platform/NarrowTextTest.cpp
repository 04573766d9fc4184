#include "host/platform/NarrowText.h"

#include <gtest/gtest.h>

namespace {

using namespace cubes::platform;

struct Case {
    char const* text;
    char const* result;
};

TEST(NarrowText, isConvertedToLowerCaseInAllLanguages) {
    Case const cases[] = {{"", ""}, {"AbC-1_z@[", "abc-1_z@["}, {"ÄÖÜß", "äöüß"}, {"ŁÓDŹ", "łódź"},
        {"МОСКВА", "москва"}, {"ΑΘΉΝΑ", "αθήνα"}, {"ⅣⓏ", "ⅳⓩ"}, {"𐐀", "𐐨"}, {"日本", "日本"}};
    for (auto const& one : cases) EXPECT_EQ(lowerCase(one.text), one.result) << one.text;
}

TEST(NarrowText, keepsInvalidBytes) {
    for (char const* const bytes : {"\xff", "a\x80z", "\xc3", "\xc3z", "\xe2\x82", "\xf8\x88\x80\x80\x80", "\x80\x80"})
        EXPECT_EQ(lowerCase(bytes), bytes);
    EXPECT_EQ(lowerCase("\xffÄ\xff"), "\xffä\xff");
}

TEST(NarrowText, isCutBetweenCharacters) {
    EXPECT_EQ(firstCharacters("abc", 2), "ab");
    EXPECT_EQ(firstCharacters(fromUtf8("äöü"), 2), fromUtf8("äö"));
    EXPECT_EQ(firstCharacters(fromUtf8("€äx"), 2), fromUtf8("€ä"));
    EXPECT_EQ(firstCharacters(fromUtf8("äö"), 2), fromUtf8("äö"));
    EXPECT_EQ(firstCharacters(fromUtf8("äö"), 9), fromUtf8("äö"));
    EXPECT_EQ(firstCharacters(fromUtf8("äö"), 0), "");
    EXPECT_EQ(firstCharacters("", 3), "");
}

TEST(NarrowText, withCharactersOfFourBytesIsCutBetweenCharacters) {
    if (narrowEncoding() != "UTF8") GTEST_SKIP() << "SKIPPED: the narrow encoding has no such characters";
    EXPECT_EQ(firstCharacters("€𐐀x", 2), "€𐐀");
}

TEST(NarrowText, replacesMissingCharactersAndNotBySimilarOnes) {
    std::string const expected = narrowEncoding() == "UTF8" ? "Ā" : "?";
    EXPECT_EQ(fromUtf8("Ā"), expected);
    EXPECT_EQ(toNarrow(L"Ā"), expected);
}

TEST(NarrowText, isConvertedFromWideText) {
    EXPECT_EQ(toNarrow(L"usageCounter"), "usageCounter");
    EXPECT_EQ(toNarrow(L"ä€"), fromUtf8("ä€"));
    EXPECT_EQ(toNarrow(L""), "");
}

TEST(NarrowText, isConvertedToAsciiLowerCaseByteByByte) {
    EXPECT_EQ(asciiLower(std::string("AbYZ@[`{19Ä\xff")), "abyz@[`{19Ä\xff");
    EXPECT_EQ(asciiLower('Q'), 'q');
    static_assert(asciiLower('Z') == 'z');
}

}
