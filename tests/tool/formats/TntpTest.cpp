#include "BadFile.h"

namespace cubes::tool {

namespace {

using Zones = std::vector<std::int32_t>;
using Cells = std::vector<float>;
using Warnings = std::vector<std::string>;

TripTable read(std::string const& content) {
    return readContent("trips.tntp", content);
}

std::string const header = "<NUMBER OF ZONES> 2\n<TOTAL OD FLOW> 10\n<END OF METADATA>\n";

}

TEST(TntpReader, assignsTheItemsToTheirCells) {
    auto const trips = read(header + "Origin 1\n 1 : 1.5; 2 : 2;\nOrigin 2\n 1 : 6.5;\n");
    EXPECT_EQ(trips.zones, (Zones{1, 2}));
    EXPECT_EQ(trips.cells, (Cells{1.5f, 2, 6.5f, 0}));
    EXPECT_EQ(trips.warnings, Warnings{});
}

TEST(TntpReader, acceptsBlanksTabsAndLineEndsAnywhere) {
    auto const trips =
        read(" <number of zones>\t2\r\n\r\n<END OF METADATA>\r\nORIGIN\t1\r\n1\t:\r\n1.5\n;2:2;origin\n2 1\t: 6.5 ;");
    EXPECT_EQ(trips.cells, (Cells{1.5f, 2, 6.5f, 0}));
}

TEST(TntpReader, skipsComments) {
    auto const trips = read("~ made by hand\n<NUMBER OF ZONES> 2 ~ two\n<END OF METADATA>\n"
                            "~ Origin 9\nOrigin 1 ~ the first\n 1 : ~ 7;\n 1.5; 2 : 2; ~ 3 : 4;");
    EXPECT_EQ(trips.cells, (Cells{1.5f, 2, 0, 0}));
}

TEST(TntpReader, ignoresUnknownHeaderLines) {
    EXPECT_EQ(read("<AUTHOR> nobody > somebody\n<END OF METADATA>\nOrigin 1\n1 : 3;").cells, Cells{3});
}

TEST(TntpReader, usesTheHeadersZonesWhenTheyIncludeAllZones) {
    auto const trips = read("<NUMBER OF ZONES> 3\n<END OF METADATA>\nOrigin 3\n1 : 4;");
    EXPECT_EQ(trips.zones, (Zones{1, 2, 3}));
    EXPECT_EQ(trips.cells, (Cells{0, 0, 0, 0, 0, 0, 4, 0, 0}));
    EXPECT_EQ(trips.warnings, Warnings{"the header gives 3 zones, but 2 occur in the file"});
}

TEST(TntpReader, usesTheZonesOfTheItemsWhenOneExceedsTheHeader) {
    auto const trips = read("<NUMBER OF ZONES> 2\n<END OF METADATA>\nOrigin 70\n5 : 4;\nOrigin 1\n");
    EXPECT_EQ(trips.zones, (Zones{1, 5, 70}));
    EXPECT_EQ(trips.at(2, 1), 4);
    EXPECT_EQ(trips.warnings, Warnings{"the header gives 2 zones, but 3 occur in the file"});
}

TEST(TntpReader, usesTheZonesOfTheItemsWithoutAWarningWhenTheirNumberAgrees) {
    auto const trips = read("<NUMBER OF ZONES> 2\n<END OF METADATA>\nOrigin 101\n205 : 4;");
    EXPECT_EQ(trips.zones, (Zones{101, 205}));
    EXPECT_EQ(trips.warnings, Warnings{});
}

TEST(TntpReader, ignoresAnImpossibleNumberOfZones) {
    auto const trips = read("<NUMBER OF ZONES> 2000000000\n<END OF METADATA>\nOrigin 1\n2 : 4;");
    EXPECT_EQ(trips.zones, (Zones{1, 2}));
    EXPECT_EQ(trips.warnings, Warnings{"the header gives 2000000000 zones, but 2 occur in the file"});
}

TEST(TntpReader, ignoresMoreZonesThanAShortTextCanHave) {
    std::string const rest = "\n<END OF METADATA>\nOrigin 1\n2 : 4;";
    EXPECT_EQ(read("<NUMBER OF ZONES> 3000" + rest).rows, 3000);
    auto const trips = read("<NUMBER OF ZONES> 32767" + rest);
    EXPECT_EQ(trips.zones, (Zones{1, 2}));
    EXPECT_EQ(trips.warnings, Warnings{"the header gives 32767 zones, but 2 occur in the file"});
    EXPECT_EQ(read("<NUMBER OF ZONES> 4500" + rest + std::string(4500, '\n')).rows, 4500);
}

TEST(TntpReader, warnsOfATotalThatDisagreesWithTheCells) {
    auto const trips = read(header + "Origin 1\n2 : 9;\nOrigin 2\n");
    EXPECT_EQ(trips.warnings, Warnings{"the header gives a total of 10, but the cells add up to 9"});
}

TEST(TntpReader, acceptsARoundedTotal) {
    struct Case {
        char const* total;
        bool agrees;
    };
    for (auto const& [total, agrees] : {Case{"10.26", true}, Case{"10.3", true}, Case{"10", true}, Case{"10.1", false},
             Case{"10.27", false}, Case{"11", false}, Case{"1.026e1", true}})
        EXPECT_EQ(read(std::string("<TOTAL OD FLOW> ") + total + "\n<END OF METADATA>\nOrigin 1\n1 : 10.26;")
                      .warnings.empty(),
            agrees)
            << total;
}

TEST(TntpReader, reportsProgress) {
    test::TempDir const directory;
    std::string content = "<END OF METADATA>\nOrigin 1\n";
    for (int zone = 1; zone <= 1000; ++zone) content += std::to_string(zone) + " : 1;\n";
    test::writeFile(directory.file("t.tntp"), content);
    std::vector<double> shares;
    readTripTable(directory.file("t.tntp"), {}, [&](double share) { shares.push_back(share); });
    EXPECT_GT(shares.size(), 50u);
    EXPECT_LE(shares.size(), 101u);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_LE(shares.back(), 1.0);
}

class BadTntp : public testing::TestWithParam<BadFile> {};

TEST_P(BadTntp, isRefusedWithItsLineAndReason) {
    EXPECT_EQ(refusal("bad.tntp", GetParam().content), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(TntpReader, BadTntp,
    testing::Values(BadFile{"empty", "", "it is empty, expected trips in TNTP format"},
        BadFile{"blank", " \n~ nothing\n", "it is empty, expected trips in TNTP format"},
        BadFile{"withoutMetadata", "Origin 1\n1 : 2;\n",
            "line 1: found 'Origin 1', expected <KEY> value or <END OF METADATA>"},
        BadFile{"metadataWithoutEnd", "<NUMBER OF ZONES> 2\n", "line 2: found nothing, expected <END OF METADATA>"},
        BadFile{
            "keyWithoutEnd", "<NUMBER OF\n", "line 1: found '<NUMBER OF', expected <KEY> value or <END OF METADATA>"},
        BadFile{"zonesInWords", "<NUMBER OF ZONES> many\n",
            "line 1: found 'many', expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"zonesMissing", "<NUMBER OF ZONES>\n",
            "line 1: found nothing, expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"totalInWords", "\n<TOTAL OD FLOW> much\n", "line 2: found 'much', expected a number"},
        BadFile{"withoutTrips", "<END OF METADATA>\n\n", "it has no trips after <END OF METADATA>"},
        BadFile{
            "itemBeforeOrigin", "<END OF METADATA>\n\n 1 : 2;", "line 3: found '1', expected Origin and a zone number"},
        BadFile{"originInWords", "<END OF METADATA>\nOrigin first",
            "line 2: found 'first', expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"originZero", "<END OF METADATA>\nOrigin 0",
            "line 2: found '0', expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"originMissing", "<END OF METADATA>\nOrigin",
            "line 2: found nothing, expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"destinationBroken", "<END OF METADATA>\nOrigin 1\n1.5 : 2;",
            "line 3: found '1.5', expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"destinationTooLarge", "<END OF METADATA>\nOrigin 1\n2147483648 : 2;",
            "line 3: found '2147483648', expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"withoutColon", "<END OF METADATA>\nOrigin 1\n1 2;", "line 3: found '2', expected ':'"},
        BadFile{"semicolonForColon", "<END OF METADATA>\nOrigin 1\n1 ; 2;", "line 3: found ';', expected ':'"},
        BadFile{"withoutSemicolon", "<END OF METADATA>\nOrigin 1\n1 : 2\n\n2 : 3;", "line 5: found '2', expected ';'"},
        BadFile{"cutOff", "<END OF METADATA>\nOrigin 1\n1 : 2", "line 3: found nothing, expected ';'"},
        BadFile{"cutOffBeforeValue", "<END OF METADATA>\nOrigin 1\n1 :", "line 3: found nothing, expected a number"},
        BadFile{"textForValue", "<END OF METADATA>\nOrigin 1\n1 : few;", "line 3: found 'few', expected a number"},
        BadFile{"decimalComma", "<END OF METADATA>\nOrigin 1\n1 : 1,5;", "line 3: found '1,5', expected a number"},
        BadFile{"tooLarge", "<END OF METADATA>\nOrigin 1\n1 : 4e38;",
            "line 3: found '4e38', expected a number within the range of a cell (3.4e38)"},
        BadFile{"duplicate", "<END OF METADATA>\nOrigin 1\n7 : 2; 8 : 1;\n8 : 3;",
            "line 4: found the cell from zone 1 to zone 8 again, after line 3"},
        BadFile{"originTwice", "<END OF METADATA>\nOrigin 1\n1 : 2;\nOrigin 1\n1 : 2;",
            "line 5: found the cell from zone 1 to zone 1 again, after line 3"},
        BadFile{"binary", std::string("\x89HDF\r\n\x1a\n\0\0", 10), "it is not a text file: it holds zero bytes"}),
    nameOf);

}
