#include <cubes/text/TRkException.h>

#include <gtest/gtest.h>

namespace {

void expectContext(
    TRkExceptionContext const& context, char const* message, char const* file, char const* function, int line) {
    EXPECT_STREQ(message, context.message.c_str());
    EXPECT_STREQ(file, context.file.c_str());
    EXPECT_STREQ(function, context.function.c_str());
    EXPECT_EQ(line, context.line);
}

}

TEST(VclOrStdException, returnsItsMessageInBothForms) {
    VclOrStdException error(AnsiString("no such cube"));
    EXPECT_EQ(AnsiString("no such cube"), error.GetMessageA());
    EXPECT_STREQ("no such cube", error.what());
    error.SetMessage("no such entry");
    EXPECT_STREQ("no such entry", error.what());
    error.SetMessage(nullptr);
    EXPECT_STREQ("", error.what());
    EXPECT_STREQ("", VclOrStdException().what());
}

TEST(TRkException, hasNoContextFromATextAndACode) {
    TRkException const error("no such cube", 0xFFFFFFFFUL);
    EXPECT_STREQ("no such cube", error.what());
    EXPECT_TRUE(error.Context().empty());
    EXPECT_STREQ("", TRkException(nullptr, 0).what());
}

TEST(TRkException, beginsItsContextWithItsOrigin) {
    TRkException const error("disk full", "File.cpp", "write", 12);
    EXPECT_STREQ("disk full", error.what());
    ASSERT_EQ(1u, error.Context().size());
    expectContext(error.Context()[0], "disk full", "File.cpp", "write", 12);
}

TEST(TRkException, collectsContextApartFromTheMessage) {
    TRkException error("disk full", 0);
    error.Add("row 3", "Cube.cpp", "save", 7);
    error.Add(nullptr, nullptr, nullptr, 0);
    EXPECT_STREQ("disk full", error.what());
    ASSERT_EQ(2u, error.Context().size());
    expectContext(error.Context()[0], "row 3", "Cube.cpp", "save", 7);
    expectContext(error.Context()[1], "", "", "", 0);
}

TEST(TRkException, carriesItsContextThroughCopies) {
    TRkException const error("disk full", "File.cpp", "write", 12);
    TRkException other("nothing", 0);
    other = error;
    EXPECT_STREQ("disk full", other.what());
    EXPECT_EQ(1u, other.Context().size());
    EXPECT_EQ(1u, TRkException(error).Context().size());
}

TEST(TRkException, isCaughtAsAStandardException) {
    try {
        throw TRkException("disk full", 0);
    } catch (std::exception const& error) {
        EXPECT_STREQ("disk full", error.what());
    }
}
