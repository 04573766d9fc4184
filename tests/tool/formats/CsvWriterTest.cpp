#include "BadFile.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace cubes::tool {

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

// Every bit pattern that no reader refuses can turn up.
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
        return std::string(error.what()).substr(path.size());
    }
}

}

TEST(CsvWriter, listsPairsThatAreNotZeroAndEveryZone) {
    EXPECT_EQ(written(tableOf({3, 11}, {0, 2.5f, 100, 0}), CsvForm::longForm),
        "origin,destination,value\n3,3,0\n3,11,2.5\n11,3,100\n11,11,0\n");
}

TEST(CsvWriter, writesZonesInTheFirstRowAndColumn) {
    EXPECT_EQ(written(tableOf({3, 11}, {0, 2.5f, 100, 0.1f}), CsvForm::wide), "zone,3,11\n3,0,2.5\n11,100,0.1\n");
}

TEST(CsvWriter, numbersZonesThatHaveNoNumbers) {
    EXPECT_EQ(written(tableOf({}, {1, 2, 3, 4}), CsvForm::wide), "zone,1,2\n1,1,2\n2,3,4\n");
}

TEST(CsvWriter, givesBackIdenticalCells) {
    auto const table = tableOf({1, 2, 3, 5, 8, 13, 21, 34, 55, 89}, anyCells(100));
    for (auto const form : {CsvForm::longForm, CsvForm::wide}) {
        auto const back = readContent("t.csv", written(table, form));
        EXPECT_EQ(back.zones, table.zones);
        EXPECT_EQ(bitsOf(back.cells), bitsOf(table.cells));
    }
}

TEST(CsvWriter, givesBackNotANumber) {
    auto const nan = std::numeric_limits<float>::quiet_NaN();
    for (auto const form : {CsvForm::longForm, CsvForm::wide}) {
        auto const back = readContent("t.csv", written(tableOf({}, {nan, -nan, 0, 1}), form));
        EXPECT_TRUE(std::isnan(back.at(0, 0)));
        EXPECT_TRUE(std::isnan(back.at(0, 1)));
        EXPECT_EQ(back.at(1, 0), 0);
    }
}

TEST(CsvWriter, keepsEmptyTablesWhole) {
    auto const back = readContent("t.csv", written(tableOf({4, 9}, {0, 0, 0, 0}), CsvForm::longForm));
    EXPECT_EQ(back.zones, (std::vector<std::int32_t>{4, 9}));
}

TEST(CsvWriter, refusesATableThatIsNotSquare) {
    TripTable table;
    table.rows = 2;
    table.columns = 3;
    table.cells.resize(6);
    EXPECT_EQ(refusalToWrite(table), ": a table of 2 x 3 values has no zones for both; .omx can hold it");
}

TEST(CsvWriter, refusesAZoneNumberThatOccursTwice) {
    EXPECT_EQ(refusalToWrite(tableOf({5, 5}, {1, 2, 3, 4})), ": the table has zone number 5 twice");
}

TEST(CsvWriter, tellsHowFarItIs) {
    test::TempDir const directory;
    std::vector<double> shares;
    writeTripTable(directory.file("t.csv"), tableOf({}, std::vector<float>(400)), "", CsvForm::wide,
        [&](double share) { shares.push_back(share); });
    EXPECT_EQ(shares.size(), 20u);
    EXPECT_EQ(shares.back(), 1.0);
}

}
