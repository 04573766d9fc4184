#include <cubes/core/TRkCubesException.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "host/platform/System.h"

namespace {

using Error = TRkCubesException;

struct OwnText {
    unsigned long code;
    char const* text;
};

void PrintTo(OwnText const& own, std::ostream* out) {
    *out << std::hex << own.code << ": " << own.text;
}

class OwnErrors : public testing::TestWithParam<OwnText> {};

TEST_P(OwnErrors, haveTheirFixedText) {
    EXPECT_STREQ(Error(nullptr, GetParam().code).what(), GetParam().text);
}

TEST_P(OwnErrors, putTheCallersTextInFrontWithOneBlank) {
    EXPECT_EQ(std::string(Error("Copy", GetParam().code).what()), std::string("Copy ") + GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(codes, OwnErrors,
    testing::Values(OwnText{0x20000001, "Cube already exists"}, OwnText{0x20000002, "From cube doesn't exist"},
        OwnText{0x20000003, "To cube doesn't exist"},
        OwnText{0x20000004, "IntTo40T> Only 2 positions reserved! Maximum value is 1599"},
        OwnText{0x20000005, "Entry already exists in the cube"},
        OwnText{0x20000006, "Matrix already exists in the cube"}, OwnText{0x20000007, "Unknown error"},
        OwnText{0x20000000, "Unknown error"}, OwnText{0x3FFFFFFF, "Unknown error"},
        // The two top bits are masked out before the code is looked up.
        OwnText{0x60000001, "Cube already exists"}, OwnText{0xA0000002, "From cube doesn't exist"},
        OwnText{0xE0000006, "Matrix already exists in the cube"}));

TEST(TRkCubesException, createdFromACodeHasItsText) {
    EXPECT_STREQ(Error(Error::ecToCubeMissing).what(), "To cube doesn't exist");
    EXPECT_STREQ(Error(Error::ecToCubeMissing).GetMessageA().c_str(), "To cube doesn't exist");
}

TEST(TRkCubesException, codesHaveBit29AndTheirNumbers) {
    EXPECT_EQ(Error::ecCubeExists, 0x20000001u);
    EXPECT_EQ(Error::ecFromCubeMissing, 0x20000002u);
    EXPECT_EQ(Error::ecToCubeMissing, 0x20000003u);
    EXPECT_EQ(Error::ecCubeNrOutOfRange, 0x20000004u);
    EXPECT_EQ(Error::ecEntryExists, 0x20000005u);
    EXPECT_EQ(Error::ecMatrixExists, 0x20000006u);
}

TEST(TRkCubesException, codeZeroUsesOnlyTheText) {
    EXPECT_STREQ(Error("text", 0).what(), "text");
    EXPECT_STREQ(Error(nullptr, 0).what(), "");
}

TEST(TRkCubesException, codeZeroWithoutTextKeepsTheMessage) {
    Error error(Error::ecCubeExists);
    error.FormatMessageA(nullptr, 0);
    EXPECT_STREQ(error.what(), "Cube already exists");
}

TEST(TRkCubesException, allOnesUsesTheThreadsLastSystemError) {
    cubes::platform::setLastError(ENOENT);
    Error const error("open", 0xFFFFFFFF);
    EXPECT_EQ(error.what(), "open " + *cubes::platform::errorText(ENOENT));
}

TEST(TRkCubesException, allOnesWithoutASystemErrorUsesOnlyTheText) {
    cubes::platform::setLastError(0);
    EXPECT_STREQ(Error("text", 0xFFFFFFFF).what(), "text");
    cubes::platform::setLastError(0);
    EXPECT_STREQ(Error(nullptr, 0xFFFFFFFF).what(), "");
}

TEST(TRkCubesException, aSystemErrorHasTheSystemsText) {
    EXPECT_EQ(Error(nullptr, EACCES).what(), *cubes::platform::errorText(EACCES));
    EXPECT_EQ(Error("save", EACCES).what(), "save " + *cubes::platform::errorText(EACCES));
}

TEST(TRkCubesException, aNumberUnknownToTheSystemKeepsTheMessage) {
    Error error(Error::ecCubeExists);
    error.FormatMessageA("text", 0x1FFFFFFF);
    EXPECT_STREQ(error.what(), "Cube already exists");
    EXPECT_STREQ(Error("text", 0x1FFFFFFF).what(), "");
}

TEST(TRkCubesException, codesAreTruncatedTo32Bits) {
    if (sizeof(unsigned long) < 8) GTEST_SKIP() << "SKIPPED: long has 32 bits here";
    unsigned long const wide = (1ul << 16 << 16) | 0x20000001ul;
    EXPECT_STREQ(Error(nullptr, wide).what(), "Cube already exists");
}

TEST(TRkCubesException, separatesContextFromTheMessage) {
    Error error("saving", "a.cpp", "save", 12);
    error.Add("entry 1/2/3/4", "b.cpp", "set", 34);
    EXPECT_STREQ(error.what(), "saving");
    ASSERT_EQ(error.Context().size(), 2u);
    EXPECT_STREQ(error.Context()[0].message.c_str(), "saving");
    EXPECT_STREQ(error.Context()[0].file.c_str(), "a.cpp");
    EXPECT_STREQ(error.Context()[0].function.c_str(), "save");
    EXPECT_EQ(error.Context()[0].line, 12);
    EXPECT_STREQ(error.Context()[1].message.c_str(), "entry 1/2/3/4");
    EXPECT_EQ(error.Context()[1].line, 34);
}

TEST(TRkCubesException, copiesMessageAndContext) {
    Error error(Error::ecEntryExists);
    error.Add("row", "a.cpp", "f", 1);
    Error const copy(error);
    Error assigned(Error::ecCubeExists);
    assigned = error;
    EXPECT_STREQ(copy.what(), "Entry already exists in the cube");
    EXPECT_STREQ(assigned.what(), "Entry already exists in the cube");
    EXPECT_EQ(copy.Context().size(), 1u);
    EXPECT_EQ(assigned.Context().size(), 1u);
}

TEST(TRkCubesException, isCaughtByItsBaseClasses) {
    EXPECT_THROW(throw Error(Error::ecCubeExists), TRkException);
    EXPECT_THROW(throw Error(Error::ecCubeExists), VclOrStdException);
    EXPECT_THROW(throw Error(Error::ecCubeExists), std::exception);
}

}
