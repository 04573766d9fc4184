#include "BadFile.h"

#include "support/Variable.h"

#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace cubes::tool {

namespace {

using Zones = std::vector<std::int32_t>;
using Cells = std::vector<float>;

struct GoodFile {
    std::string name;
    std::string content;
};

void PrintTo(GoodFile const& file, std::ostream* stream) {
    *stream << file.name;
}

std::string zoneError(std::string const& found) {
    return "found '" + found + "', expected a zone number (a whole number from 1 to 2147483647)";
}

}

class GoodCsv : public testing::TestWithParam<GoodFile> {};

TEST_P(GoodCsv, isAccepted) {
    auto const trips = readContent("trips.csv", GetParam().content);
    EXPECT_EQ(trips.rows, 2);
    EXPECT_EQ(trips.columns, 2);
    EXPECT_EQ(trips.zones, (Zones{3, 11}));
    EXPECT_EQ(trips.cells, (Cells{0, 2.5f, 100, 0}));
    EXPECT_TRUE(trips.warnings.empty());
}

INSTANTIATE_TEST_SUITE_P(CsvReader, GoodCsv,
    testing::Values(GoodFile{"longForm", "origin,destination,value\n3,11,2.5\n11,3,100\n"},
        GoodFile{"longFormInAnyOrder", "origin,destination,value\n11,3,1e2\n3,11,2.5\n"},
        GoodFile{"columnsInAnyOrder", "value,destination,origin\n2.5,11,3\n100,3,11\n"},
        GoodFile{"headerInCapitals", "Origin,DESTINATION,Value\n3,11,2.5\n11,3,100\n"},
        GoodFile{"withoutLastLineEnd", "origin,destination,value\n3,11,2.5\n11,3,100"},
        GoodFile{"windowsLineEnds", "origin,destination,value\r\n3,11,2.5\r\n11,3,100\r\n"},
        GoodFile{"byteOrderMark", "\xEF\xBB\xBForigin,destination,value\n3,11,2.5\n11,3,100\n"},
        GoodFile{"blankLines", "\norigin,destination,value\n\n3,11,2.5\n11,3,100\n\n  \n\r\n"},
        GoodFile{"blanks", " origin ,\tdestination, value \n 3 , 11 ,\t2.5\n11, 3, 100 \n"},
        GoodFile{"quotes", "\"origin\",\"destination\",\"value\"\n\"3\",\"11\" , \"2.5\"\n\" 11\",3,\"100\"\n"},
        GoodFile{"plusSigns", "origin,destination,value\n3,11,+2.5\n+11,3,100\n"},
        GoodFile{"zerosListed", "origin,destination,value\n3,3,0\n3,11,2.5\n11,3,100\n11,11,0.0\n"},
        GoodFile{"wideForm", "zone,3,11\n3,0,2.5\n11,100,0\n"},
        GoodFile{"wideWithEmptyCorner", ",3,11\n3,0,2.5\n11,100,0\n"},
        GoodFile{"wideWithQuotedCorner", "\"from, \"\"to\"\"\",3,11\n3,0,2.5\n11,100,0\n"},
        GoodFile{"wideWithNumberInCorner", "0,3,11\n3,0,2.5\n11,100,0\n"},
        GoodFile{"wideWithRowsInAnyOrder", "zone,3,11\n11,100,0\n3,0,2.5\n"},
        GoodFile{"wideWithColumnsInAnyOrder", "zone,11,3\n3,2.5,0\n11,0,100\n"},
        GoodFile{"wideFromWindows", "\xEF\xBB\xBF\"zone\",\"3\",\"11\"\r\n\"3\",0,2.5\r\n11,100,0\r\n\r\n"}),
    [](auto const& test) { return test.param.name; });

class BadCsv : public testing::TestWithParam<BadFile> {};

TEST_P(BadCsv, isRefusedWithItsLineAndReason) {
    EXPECT_EQ(refusal("bad.csv", GetParam().content), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(LongForm, BadCsv,
    testing::Values(BadFile{"empty", "", "it is empty, expected comma-separated values"},
        BadFile{"blank", "\n \r\n", "it is empty, expected comma-separated values"},
        BadFile{"onlyAMark", "\xEF\xBB\xBF", "it is empty, expected comma-separated values"},
        BadFile{"onlyAHeader", "origin,destination,value\n", "it has no cells after the header line"},
        BadFile{"otherSeparator", "origin;destination;value\n1;2;3\n",
            "line 1: found 'origin;destination;value', expected the header origin,destination,value or zone numbers "
            "after "
            "the first field"},
        BadFile{"otherNames", "from,to,trips\n1,2,3\n",
            "line 1: found 'to', expected the header origin,destination,value or a zone number"},
        BadFile{"nameTwice", "origin,origin,value\n1,2,3\n",
            "line 1: found 'origin', expected the header origin,destination,value or a zone number"},
        BadFile{"withoutHeader", "1,2,3.5\n",
            "line 1: found '3.5', expected the header origin,destination,value or a zone number"},
        BadFile{"tooFewFields", "origin,destination,value\n1,2,3\n1,3\n", "line 3: found 2 fields, expected 3"},
        BadFile{"tooManyFields", "origin,destination,value\n1,2,3,\n", "line 2: found 4 fields, expected 3"},
        BadFile{"textForValue", "origin,destination,value\n\n1,2,many\n", "line 3: found 'many', expected a number"},
        BadFile{"noValue", "origin,destination,value\n1,2,\n", "line 2: found nothing, expected a number"},
        BadFile{"decimalComma", "origin,destination,value\n1,2,\"1,5\"\n", "line 2: found '1,5', expected a number"},
        BadFile{"hexadecimal", "origin,destination,value\n1,2,0x10\n", "line 2: found '0x10', expected a number"},
        BadFile{"tooLarge", "origin,destination,value\n1,2,1e39\n",
            "line 2: found '1e39', expected a number within the range of a cell (3.4e38)"},
        BadFile{"zoneInWords", "origin,destination,value\ncentre,2,1\n", "line 2: " + zoneError("centre")},
        BadFile{"zoneZero", "origin,destination,value\n1,0,1\n", "line 2: " + zoneError("0")},
        BadFile{"zoneNegative", "origin,destination,value\n-1,2,1\n", "line 2: " + zoneError("-1")},
        BadFile{"zoneBroken", "origin,destination,value\n1,2.0,1\n", "line 2: " + zoneError("2.0")},
        BadFile{"zoneTooLarge", "origin,destination,value\n1,2147483648,1\n", "line 2: " + zoneError("2147483648")},
        BadFile{"zoneMissing", "origin,destination,value\n1,,1\n",
            "line 2: found nothing, expected a zone number (a whole number from 1 to 2147483647)"},
        BadFile{"duplicate", "origin,destination,value\n1,2,1\n2,1,1\n1,2,1\n",
            "line 4: found the cell from zone 1 to zone 2 again, after line 2"},
        BadFile{"duplicateZero", "origin,destination,value\n1,2,0\n1,2,1\n",
            "line 3: found the cell from zone 1 to zone 2 again, after line 2"},
        BadFile{"openQuote", "origin,destination,value\n1,2,\"3\n", "line 2: found '\"3', expected a closing quote"},
        BadFile{"openDoubledQuote", "origin,destination,value\n1,2,\"3\"\"\n",
            "line 2: found '\"3\"\"', expected a closing quote"},
        BadFile{"textBehindQuote", "origin,destination,value\n1,\"2\"3,4\n",
            "line 2: found '3,4', expected a comma after a quoted field"},
        BadFile{"zeroByte", std::string("origin,destination,value\n1,2,3\0\n", 32),
            "it is not a text file: it holds zero bytes"},
        BadFile{"longText", "origin,destination,value\n1,2," + std::string(1000, 'x'),
            "line 2: found '" + std::string(40, 'x') + "...', expected a number"}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(WideForm, BadCsv,
    testing::Values(BadFile{"onlyAHeader", "zone,1,2\n", "it has no row for zone 1"},
        BadFile{
            "tooFewFields", "zone,1,2\n1,0,1\n2,5\n", "line 3: found 2 fields, expected a zone number and 2 values"},
        BadFile{"tooManyFields", "zone,1,2\n1,0,1,3\n", "line 2: found 4 fields, expected a zone number and 2 values"},
        BadFile{"rowMissing", "zone,1,2\n2,0,1\n", "it has no row for zone 1"},
        BadFile{"columnMissing", "zone,1,2\n1,0,1\n2,0,1\n3,0,1\n", "it has no column for zone 3"},
        BadFile{"rowTwice", "zone,1,2\n1,0,1\n1,0,1\n", "line 3: found the row of zone 1 again, after line 2"},
        BadFile{"columnTwice", "zone,1,1\n1,0,1\n", "line 1: found the column of zone 1 twice"},
        BadFile{"columnInWords", "zone,1,two\n1,0,1\n",
            "line 1: found 'two', expected the header origin,destination,value or a zone number"},
        BadFile{"rowInWords", "zone,1\none,0\n", "line 2: " + zoneError("one")},
        BadFile{"rowZero", "zone,1\n0,0\n", "line 2: " + zoneError("0")},
        BadFile{"textForValue", "zone,1,2\n1,0,1\n2,-,1\n", "line 3: found '-', expected a number"},
        BadFile{"noValue", "zone,1,2\n1,0,\n", "line 2: found nothing, expected a number"}),
    nameOf);

TEST(CsvReader, acceptsNegativeValues) {
    auto const trips = readContent("t.csv", "origin,destination,value\n1,2,-0.5\n2,1,-inf\n");
    EXPECT_EQ(trips.at(0, 1), -0.5f);
    EXPECT_EQ(trips.at(1, 0), -std::numeric_limits<float>::infinity());
}

TEST(CsvReader, acceptsInfiniteValuesAndNaN) {
    auto const trips = readContent("t.csv", "zone,1,2\n1,nan,inf\n2,NaN,Infinity\n");
    EXPECT_TRUE(std::isnan(trips.at(0, 0)) && std::isnan(trips.at(1, 0)));
    EXPECT_TRUE(std::isinf(trips.at(0, 1)) && std::isinf(trips.at(1, 1)));
}

TEST(CsvReader, readsAValueTooSmallForACellAsZero) {
    EXPECT_EQ(readContent("t.csv", "zone,1\n1,1e-60\n").cells, Cells{0});
}

TEST(CsvReader, refusesMoreZonesThanATableCanHave) {
    std::string content = "origin,destination,value\n";
    for (int zone = 1; zone <= 40'001; ++zone) content += fmt::format("{0},{0},1\n", zone);
    EXPECT_EQ(refusal("t.csv", content),
        "it has 40001 zones, more than 40000; allow more with --max-zones or CUBES_MAX_ZONES");
    cubes::test::Variable const lower("CUBES_MAX_ZONES", "2");
    EXPECT_EQ(refusal("t.csv", "zone,1,2,3\n"),
        "it has 3 zones, more than 2; allow more with --max-zones or CUBES_MAX_ZONES");
}

namespace {

TripTable tableOf(std::vector<std::int32_t> zones, std::vector<float> cells) {
    TripTable table;
    table.rows = table.columns = static_cast<int>(std::sqrt(static_cast<double>(cells.size())));
    table.zones = std::move(zones);
    table.cells = std::move(cells);
    return table;
}

std::string written(TripTable const& table, CsvForm form) {
    test::TempDir const directory;
    writeTripTable(directory.file("t.csv"), table, "trips", form);
    EXPECT_EQ(test::listing(directory.str()), "t.csv\n");
    return test::readFile(directory.file("t.csv"));
}

std::vector<std::uint32_t> bitsOf(std::vector<float> const& cells) {
    std::vector<std::uint32_t> bits;
    for (float const cell : cells) bits.push_back(std::bit_cast<std::uint32_t>(cell));
    return bits;
}

// Every bit pattern that no reader refuses may occur.
std::vector<float> anyCells(std::size_t count) {
    std::mt19937 random(7);
    std::vector<float> cells = {0.0f, -0.0f, 0.1f, 1e-45f, std::numeric_limits<float>::max(),
        std::numeric_limits<float>::min(), std::numeric_limits<float>::infinity(), 16777217.0f, 1.0f / 3};
    while (cells.size() < count) {
        auto const cell = std::bit_cast<float>(static_cast<std::uint32_t>(random()) & 0x7fffffffu);
        if (!std::isnan(cell)) cells.push_back(cell);
    }
    return cells;
}

std::string refusalToWrite(TripTable const& table) {
    test::TempDir const directory;
    auto const path = directory.file("t.csv");
    try {
        writeTripTable(path, table, "trips");
        return {};
    } catch (FormatError const& error) {
        EXPECT_EQ(test::listing(directory.str()), "");
        return error.what();
    }
}

}

TEST(CsvWriter, writesNonZeroOdPairsAndEveryZone) {
    EXPECT_EQ(written(tableOf({3, 11}, {0, 2.5f, 100, 0}), CsvForm::longForm),
        "origin,destination,value\n3,3,0\n3,11,2.5\n11,3,100\n11,11,0\n");
}

TEST(CsvWriter, writesZonesInTheFirstRowAndColumn) {
    EXPECT_EQ(written(tableOf({3, 11}, {0, 2.5f, 100, 0.1f}), CsvForm::wide), "zone,3,11\n3,0,2.5\n11,100,0.1\n");
}

TEST(CsvWriter, numbersZonesWithoutNumbers) {
    EXPECT_EQ(written(tableOf({}, {1, 2, 3, 4}), CsvForm::wide), "zone,1,2\n1,1,2\n2,3,4\n");
}

TEST(CsvWriter, preservesAllCells) {
    auto const table = tableOf({1, 2, 3, 5, 8, 13, 21, 34, 55, 89}, anyCells(100));
    for (auto const form : {CsvForm::longForm, CsvForm::wide}) {
        auto const back = readContent("t.csv", written(table, form));
        EXPECT_EQ(back.zones, table.zones);
        EXPECT_EQ(bitsOf(back.cells), bitsOf(table.cells));
    }
}

TEST(CsvWriter, preservesNaN) {
    auto const notANumber = std::numeric_limits<float>::quiet_NaN();
    for (auto const form : {CsvForm::longForm, CsvForm::wide}) {
        auto const back = readContent("t.csv", written(tableOf({}, {notANumber, -notANumber, 0, 1}), form));
        EXPECT_TRUE(std::isnan(back.at(0, 0)));
        EXPECT_TRUE(std::isnan(back.at(0, 1)));
        EXPECT_EQ(back.at(1, 0), 0);
    }
}

TEST(CsvWriter, preservesEmptyTables) {
    auto const back = readContent("t.csv", written(tableOf({4, 9}, {0, 0, 0, 0}), CsvForm::longForm));
    EXPECT_EQ(back.zones, (std::vector<std::int32_t>{4, 9}));
}

TEST(CsvWriter, refusesANonSquareTable) {
    TripTable table;
    table.rows = 2;
    table.columns = 3;
    table.cells.resize(6);
    EXPECT_EQ(refusalToWrite(table),
        ".csv holds square matrices only, and this one has 2 rows and 3 columns; export it to an .omx file");
}

TEST(CsvWriter, refusesADuplicateZoneNumber) {
    EXPECT_EQ(refusalToWrite(tableOf({5, 5}, {1, 2, 3, 4})), "the matrix has zone number 5 twice");
}

TEST(CsvWriter, reportsProgress) {
    test::TempDir const directory;
    std::vector<double> shares;
    writeTripTable(directory.file("t.csv"), tableOf({}, std::vector<float>(400)), "", CsvForm::wide,
        [&](double share) { shares.push_back(share); });
    EXPECT_EQ(shares.size(), 20u);
    EXPECT_EQ(shares.back(), 1.0);
}

}
