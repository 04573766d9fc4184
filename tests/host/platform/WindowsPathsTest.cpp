#include "host/platform/File.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <windows.h>

namespace platform = cubes::platform;
using cubes::test::listing;
using cubes::test::TempDir;
using cubes::test::writeFile;

namespace {

struct Pair {
    std::string first;
    std::string second;
};

/// Whether the code page has these letters, as those of western Europe do.
#define CUBES_REQUIRE_LETTERS(letters)                                                                                 \
    if (platform::toUtf8(std::string_view(platform::fromUtf8(letters))) != (letters))                                  \
    GTEST_SKIP() << "SKIPPED: the code page has not got " << (letters)

}

TEST(WindowsPaths, areTheSameInAnyLetterCaseAndWithEitherDelimiter) {
    Pair const same[] = {{R"(C:\Data\a.skm)", "c:/data/A.SKM"}, {R"(C:\Data\)", R"(c:\data)"},
        {R"(C:\data\.\x\..\a)", R"(c:\data\a)"}, {R"(\\Server\Share\a)", "//server/share/A"}};
    for (auto const& [first, second] : same) EXPECT_TRUE(platform::isSamePath(first, second)) << first << " " << second;
    Pair const different[] = {{R"(C:\data\a)", R"(D:\data\a)"}, {R"(C:\data\a)", R"(C:\data\b)"},
        {R"(\\server\share\a)", R"(\\server\other\a)"}, {R"(\\server\share\a)", R"(C:\share\a)"}};
    for (auto const& [first, second] : different)
        EXPECT_FALSE(platform::isSamePath(first, second)) << first << " " << second;
}

TEST(WindowsPaths, areInADirectory) {
    Pair const paths[] = {{R"(C:\data\a.skm)", R"(C:\data)"}, {R"(C:\a.skm)", R"(C:\)"}, {R"(data\a.skm)", "data"},
        {"data/a.skm", "data"}, {R"(\\server\share\b\a.skm)", R"(\\server\share\b)"}, {"a.skm", "."}};
    for (auto const& [path, directory] : paths) EXPECT_EQ(platform::directoryOf(path), directory) << path;
}

TEST(WindowsPaths, becomeAbsoluteWithBackslashes) {
    Pair const paths[] = {{R"(C:\data\.\x\..\a)", R"(C:\data\a)"}, {"C:/data/a", R"(C:\data\a)"},
        {R"(\\server\share\x\..\a)", R"(\\server\share\a)"}};
    for (auto const& [path, absolute] : paths) EXPECT_EQ(platform::absolutePath(path), absolute) << path;
    EXPECT_EQ(platform::absolutePath("a"), (std::filesystem::current_path() / "a").string());
}

TEST(WindowsPaths, areRelativeToADirectoryOrWhole) {
    Pair const paths[] = {{"m", R"(C:\data\m)"}, {R"(D:\m)", R"(D:\m)"}, {R"(\\server\share\m)", R"(\\server\share\m)"},
        {"//server/share/m", "//server/share/m"}, {R"(\m)", R"(C:\m)"}, {"", R"(C:\data\)"}};
    for (auto const& [path, whole] : paths) EXPECT_EQ(platform::resolved(R"(C:\data)", path), whole) << path;
}

TEST(WindowsPaths, areNotCopiedIntoThemselvesInAnyLetterCase) {
    TempDir const directory;
    std::filesystem::create_directory(directory.file("Data"));
    writeFile(directory.file("Data/a"), "a");
    EXPECT_FALSE(platform::copy(directory.file("Data"), directory.file("dATA/inner"), true));
    EXPECT_FALSE(platform::copyFile(directory.file("Data/a"), directory.file("data/A")));
    EXPECT_TRUE(platform::overlap(directory.file("Data"), directory.file("DATA/x")));
    EXPECT_EQ(listing(directory.str()), "Data\nData/a\n");
}

TEST(WindowsPaths, nameTheFileInAnyLetterCaseAndWithEitherDelimiter) {
    TempDir const directory;
    std::filesystem::create_directory(directory.file("Data"));
    writeFile(directory.file("Data/a.skm"), "a");
    EXPECT_TRUE(platform::isRegularFile(directory.str() + "/DATA/A.SKM"));
    EXPECT_TRUE(platform::isRegularFile(directory.str() + "\\data\\a.skm"));
    EXPECT_EQ(platform::File::openForReading(directory.str() + "/data\\A.skm").size(), 1u);
}

TEST(WindowsPaths, areTheSameOnWhateverDriveNamesThem) {
    TempDir const directory;
    std::filesystem::create_directory(directory.file("inner"));
    if (!DefineDosDeviceW(0, L"S:", std::filesystem::path(directory.str()).c_str()))
        GTEST_SKIP() << "SKIPPED: a directory cannot be mapped to a drive";
    bool const isInside = platform::overlap("S:\\inner", directory.str());
    bool const isNewInside = platform::overlap(directory.str(), "S:\\inner\\new");
    bool const isElsewhere = platform::overlap("S:\\inner", directory.file("other"));
    bool const isKnown = platform::withoutLinks("S:\\inner") == platform::withoutLinks(directory.file("inner"));
    DefineDosDeviceW(DDD_REMOVE_DEFINITION, L"S:", nullptr);
    EXPECT_FALSE(isElsewhere);
    if (!isKnown) GTEST_SKIP() << "SKIPPED: Wine does not report the target of a drive";
    EXPECT_TRUE(isInside);
    EXPECT_TRUE(isNewInside);
}

TEST(WindowsPaths, mayContainLettersOfTheCodePage) {
    CUBES_REQUIRE_LETTERS("Zürich ÄÖ ß.skm");
    TempDir const directory;
    std::string const name = directory.file(platform::fromUtf8("Zürich ÄÖ ß.skm"));
    platform::File::createNew(name);
    EXPECT_EQ(listing(directory.str()), "Zürich ÄÖ ß.skm\n");
    EXPECT_TRUE(platform::isSamePath(name, directory.file(platform::fromUtf8("zÜRICH äö ß.SKM"))));
    EXPECT_TRUE(platform::copyFile(name, directory.file(platform::fromUtf8("é"))));
    EXPECT_TRUE(platform::removeFile(name));
    EXPECT_EQ(listing(directory.str()), "é\n");
    EXPECT_EQ(platform::toUtf8(platform::fromUtf8("é")), "é");
}

TEST(WindowsPaths, areNotMistakenForSimilarOnes) {
    if (platform::narrowEncoding() == "UTF8") GTEST_SKIP() << "SKIPPED: the code page has all letters";
    EXPECT_EQ(platform::fromPath(L"\u0100\uFF21.skm"), "??.skm");
    TempDir const directory;
    EXPECT_THROW(platform::File::createNew(directory.file("??.skm")), std::system_error);
    EXPECT_EQ(listing(directory.str()), "");
}
