#include "tool/city/City.h"
#include "tool/Statistics.h"

#include <gtest/gtest.h>

namespace cubes::tool {

namespace {

// Smaller than the standard city, for fast tests.
City const& smallCity() {
    static City const city = makeCity({.seed = 1, .zones = 60});
    return city;
}

double weightedMean(TripTable const& values, TripTable const& weights) {
    double sum = 0;
    double weight = 0;
    for (std::size_t i = 0; i < values.cells.size(); ++i) {
        sum += static_cast<double>(values.cells[i]) * weights.cells[i];
        weight += weights.cells[i];
    }
    return sum / weight;
}

// Calls the function with every purpose, mode and period.
template <typename Function>
void forEachTable(City const& city, Function function) {
    for (int purpose = 0; purpose < static_cast<int>(city.purposes.size()); ++purpose)
        for (int mode = 0; mode < static_cast<int>(city.modes.size()); ++mode)
            for (int period = 0; period < static_cast<int>(city.periods.size()); ++period)
                function(purpose, mode, period);
}

Statistics figuresOf(TripTable const& table) {
    return statisticsOf(table.rows, table.columns, [&](int row) { return table.row(row); });
}

// The mean number of trips per OD pair at distances from `least` to below `most`.
double tripsAPair(TripTable const& trips, TripTable const& distance, float least, float most) {
    double sum = 0;
    int pairs = 0;
    for (std::size_t i = 0; i < trips.cells.size(); ++i)
        if (distance.cells[i] >= least && distance.cells[i] < most) {
            sum += trips.cells[i];
            ++pairs;
        }
    return sum / pairs;
}

}

TEST(City, hasATableForEveryPurposeModeAndPeriod) {
    auto const& city = smallCity();
    EXPECT_EQ(city.purposes, (std::vector<std::string>{"work", "education", "shopping", "other"}));
    EXPECT_EQ(city.modes, (std::vector<std::string>{"car", "transit", "bike"}));
    EXPECT_EQ(city.periods, (std::vector<std::string>{"morning", "midday", "evening"}));
    forEachTable(city, [&](int purpose, int mode, int period) {
        for (auto const* table :
            {&city.trips(purpose, mode, period), &city.distance(mode, period), &city.time(mode, period)}) {
            EXPECT_EQ(table->rows, 60);
            EXPECT_EQ(table->columns, 60);
            EXPECT_EQ(table->zones.back(), 60);
            EXPECT_EQ(table->cells.size(), 3'600u);
        }
    });
}

TEST(City, matchesItsTripEnds) {
    EXPECT_LT(largestMarginError(smallCity()), 1e-6);
}

TEST(City, detectsTripEndsThatDoNotMatch) {
    City city = makeCity({.seed = 3, .zones = 20});
    EXPECT_LT(largestMarginError(city), 1e-6);
    city.tripTables[0].at(2, 5) += static_cast<float>(city.margins(0, 0).origins[2]) * 0.01f;
    EXPECT_NEAR(largestMarginError(city), 0.01, 0.01);
    EXPECT_GT(largestMarginError(city), 0.0099);
}

TEST(City, isTheSameForTheSameSeed) {
    CityOptions const options{.seed = 42, .zones = 30};
    auto const first = makeCity(options);
    auto const second = makeCity(options);
    auto const other = makeCity({.seed = 43, .zones = 30});
    EXPECT_EQ(first.trips(1, 2, 0).cells, second.trips(1, 2, 0).cells);
    EXPECT_EQ(first.time(0, 1).cells, second.time(0, 1).cells);
    EXPECT_NE(first.trips(1, 2, 0).cells, other.trips(1, 2, 0).cells);
}

TEST(City, hasFiniteTripsAndSkims) {
    auto const& city = smallCity();
    forEachTable(city, [&](int purpose, int mode, int period) {
        for (auto const* table :
            {&city.trips(purpose, mode, period), &city.distance(mode, period), &city.time(mode, period)}) {
            auto const figures = figuresOf(*table);
            EXPECT_EQ(figures.nans + figures.infinities + figures.negatives, 0);
            EXPECT_GT(figures.minimum, 0);
        }
    });
}

TEST(City, hasIntrazonalTrips) {
    auto const& city = smallCity();
    forEachTable(city, [&](int purpose, int mode, int period) {
        auto const share = figuresOf(city.trips(purpose, mode, period)).intrazonalShare;
        EXPECT_TRUE(share > 0.005 && share < 0.5) << share;
    });
}

TEST(City, hasFewerTripsOverLongerDistances) {
    auto const& city = smallCity();
    forEachTable(city, [&](int purpose, int mode, int period) {
        auto const& trips = city.trips(purpose, mode, period);
        auto const& distance = city.distance(mode, period);
        double nearer = tripsAPair(trips, distance, 0, 3);
        for (float least = 3; least < 30; least *= 2) {
            double const farther = tripsAPair(trips, distance, least, 2 * least);
            EXPECT_LT(farther, nearer) << city.purposes[static_cast<std::size_t>(purpose)] << ' ' << least;
            nearer = farther;
        }
    });
}

TEST(City, hasShorterTripsByBikeThanByCar) {
    auto const& city = smallCity();
    for (int purpose = 0; purpose < 4; ++purpose)
        EXPECT_LT(weightedMean(city.distance(2, 0), city.trips(purpose, 2, 0)),
            weightedMean(city.distance(0, 0), city.trips(purpose, 0, 0)));
}

TEST(City, hasTwoHundredZonesThatMatchTheirTripEnds) {
    auto const city = makeCity();
    EXPECT_EQ(city.zones.size(), 200u);
    EXPECT_LT(largestMarginError(city), 1e-6);
}

TEST(City, worksWithThreeZones) {
    EXPECT_LT(largestMarginError(makeCity({.seed = 1, .zones = 3})), 1e-6);
}

}
