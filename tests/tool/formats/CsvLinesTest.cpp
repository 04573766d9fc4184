#include "tool/formats/CsvLines.h"

#include "tool/formats/BadFile.h"

namespace cubes::tool {

namespace {

constexpr std::string_view names[] = {"zone", "jobs"};

// "zone jobs" per line, each with its line number in the file.
std::string readColumns(std::string const& text) {
    std::string result;
    ProgressCallback const nobody;
    CsvLines lines(text, nobody);
    auto columns = CsvColumns::require(lines, names);
    while (columns.next())
        result +=
            std::to_string(columns.line()) + ": " + std::string(columns[0]) + " " + std::string(columns[1]) + "\n";
    return result;
}

std::string errorOf(std::string const& text) {
    try {
        return "no error: " + readColumns(text);
    } catch (FormatError const& error) {
        return error.what();
    }
}

}

TEST(CsvColumns, areFoundByNameInAnyOrderAndLetterCase) {
    for (auto const* header : {"zone,jobs", "Zone,JOBS", " zone ,\t\"jobs\""})
        EXPECT_EQ(readColumns(header + std::string("\n1,20\n\n2,30\n")), "2: 1 20\n4: 2 30\n");
    EXPECT_EQ(readColumns("jobs,zone\n20,1\n30,2\n"), "2: 1 20\n3: 2 30\n");
}

TEST(CsvColumns, areReadUpToTheLastLine) {
    EXPECT_EQ(readColumns("zone,jobs"), "");
    EXPECT_EQ(readColumns("zone,jobs\n1,"), "2: 1 \n");
    std::string const text = "zone,jobs\n1,2\n";
    ProgressCallback const nobody;
    CsvLines lines(text, nobody);
    auto columns = CsvColumns::require(lines, names);
    EXPECT_TRUE(columns.next());
    EXPECT_FALSE(columns.next());
    EXPECT_FALSE(columns.next());
}

TEST(CsvColumns, nameTheExpectedHeader) {
    EXPECT_EQ(errorOf(""), "it is empty, expected the header zone,jobs");
    EXPECT_EQ(errorOf("\n \n"), "it is empty, expected the header zone,jobs");
    for (std::string const header : {"zone", "zone,zone", "zone,jobs,", "zone,jobs,jobs", "zone,job", "1,2"})
        EXPECT_EQ(errorOf("\n" + header + "\n1,2\n"), "line 2: found '" + header + "', expected the header zone,jobs");
}

TEST(CsvColumns, refuseALineWithMoreOrFewerFields) {
    EXPECT_EQ(errorOf("zone,jobs\n1,2\n3\n"), "line 3: found 1 fields, expected 2");
    EXPECT_EQ(errorOf("zone,jobs\n1,2,\n"), "line 2: found 3 fields, expected 2");
}

}
