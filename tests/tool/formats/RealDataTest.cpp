#include "support/SharedData.h"
#include "support/TempDir.h"
#include "tool/Statistics.h"
#include "tool/formats/Formats.h"

#include <gtest/gtest.h>

#include <ostream>

namespace cubes::tool {

namespace {

struct RealTrips {
    std::string name;
    int zones;
    double total;
    double intrazonal;
};

void PrintTo(RealTrips const& trips, std::ostream* stream) {
    *stream << trips.name;
}

Statistics statisticsOfTable(TripTable const& table) {
    return statisticsOf(table.rows, table.columns, [&](int row) { return table.row(row); });
}

}

class RealTntp : public testing::TestWithParam<RealTrips> {
protected:
    std::string file() const { return "tntp/" + GetParam().name + "_trips.tntp"; }
    std::string path() const { return test::sharedData(file()); }
};

TEST_P(RealTntp, hasItsZonesAndTotalWithoutAWarning) {
    CUBES_REQUIRE_DATA(file());
    auto const trips = readTripTable(path());
    auto const figures = statisticsOfTable(trips);
    EXPECT_EQ(trips.rows, GetParam().zones);
    EXPECT_EQ(trips.zones.front(), 1);
    EXPECT_EQ(trips.zones.back(), GetParam().zones);
    // Cells are single precision.
    EXPECT_NEAR(figures.total, GetParam().total, GetParam().total * 2e-9);
    EXPECT_NEAR(figures.intrazonal, GetParam().intrazonal, GetParam().total * 2e-9);
    EXPECT_EQ(trips.warnings, std::vector<std::string>{});
}

TEST_P(RealTntp, isPreservedByCsvInBothForms) {
    CUBES_REQUIRE_DATA(file());
    test::TempDir const directory;
    auto const trips = readTripTable(path());
    for (auto const form : {CsvForm::longForm, CsvForm::wide}) {
        writeTripTable(directory.file("t.csv"), trips, "", form);
        auto const back = readTripTable(directory.file("t.csv"));
        EXPECT_EQ(back.zones, trips.zones);
        EXPECT_EQ(back.cells, trips.cells);
    }
}

INSTANTIATE_TEST_SUITE_P(RealData, RealTntp,
    testing::Values(RealTrips{"SiouxFalls", 24, 360600, 0}, RealTrips{"ChicagoSketch", 387, 1260907.44, 123414},
        RealTrips{"Barcelona", 110, 184679.561, 0}, RealTrips{"Winnipeg", 147, 64784, 9},
        RealTrips{"Anaheim", 38, 104694.40, 0}),
    [](auto const& test) { return test.param.name; });

}
