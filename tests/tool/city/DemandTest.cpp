#include "tool/city/Demand.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace cubes::tool {

namespace {

SquareTable tableOf(std::size_t size, std::vector<double> const& values) {
    return SquareTable::of(size, [&](std::size_t i, std::size_t j) { return values[i * size + j]; });
}

void expectMargins(SquareTable const& trips, Margins const& margins) {
    for (std::size_t i = 0; i < trips.size(); ++i) {
        double row = 0;
        double column = 0;
        for (std::size_t j = 0; j < trips.size(); ++j) {
            row += trips.at(i, j);
            column += trips.at(j, i);
        }
        EXPECT_NEAR(row, margins.origins[i], 1e-6 * margins.origins[i]);
        EXPECT_NEAR(column, margins.destinations[i], 1e-6 * margins.destinations[i]);
    }
}

}

TEST(Gravity, distributesTripsInProportionWithoutDeterrence) {
    auto const trips = distribute({{30, 70}, {40, 60}}, tableOf(2, {1, 1, 1, 1}));
    EXPECT_NEAR(trips.at(0, 0), 12, 1e-9);
    EXPECT_NEAR(trips.at(0, 1), 18, 1e-9);
    EXPECT_NEAR(trips.at(1, 0), 28, 1e-9);
    EXPECT_NEAR(trips.at(1, 1), 42, 1e-9);
}

// With equal trip ends of 100 and deterrence f on the diagonal and g elsewhere, trips are 100 f / (f + g).
TEST(Gravity, agreesWithTheSolutionComputedByHand) {
    auto const trips = distribute({{100, 100}, {100, 100}}, tableOf(2, {3, 1, 1, 3}));
    EXPECT_NEAR(trips.at(0, 0), 75, 1e-4);
    EXPECT_NEAR(trips.at(1, 0), 25, 1e-4);
}

// Balancing changes the margins but not the cross-product ratio, which the deterrence determines.
TEST(Gravity, matchesTheTripEndsAndTheCrossProductRatio) {
    Margins const margins{{10, 250}, {200, 60}};
    auto const trips = distribute(margins, tableOf(2, {5, 1, 2, 3}));
    expectMargins(trips, margins);
    EXPECT_NEAR(trips.at(0, 0) * trips.at(1, 1) / (trips.at(0, 1) * trips.at(1, 0)), 7.5, 1e-9);
}

TEST(Gravity, leavesZonesWithoutTripsEmpty) {
    Margins const margins{{0, 50, 50}, {20, 80, 0}};
    auto const trips = distribute(margins, tableOf(3, {1, 2, 3, 2, 1, 2, 3, 2, 1}));
    expectMargins(trips, margins);
    EXPECT_EQ(trips.at(0, 1), 0);
    EXPECT_EQ(trips.at(1, 2), 0);
}

TEST(Gravity, refusesTripEndsWithDifferentTotals) {
    EXPECT_THROW(distribute({{1, 2}, {3, 4}}, tableOf(2, {1, 1, 1, 1})), std::invalid_argument);
}

TEST(Gravity, failsWhenDeterrenceExcludesRequiredTrips) {
    EXPECT_THROW(distribute({{10, 11}, {11, 10}}, tableOf(2, {1, 1e-300, 1e-300, 1})), std::runtime_error);
}

TEST(Deterrence, increasesWithAccessibility) {
    auto const deterrence = deterrenceOf(Purpose::work, tableOf(2, {-1, -2, -3, 0}));
    EXPECT_DOUBLE_EQ(deterrence.at(0, 0), std::exp(-1.1));
    EXPECT_LT(deterrence.at(1, 0), deterrence.at(0, 1));
    EXPECT_DOUBLE_EQ(deterrence.at(1, 1), 1);
}

TEST(Demand, hasTheSameTotalOnBothSides) {
    std::vector<Zone> const zones = {{1, Area::centre, {}, 1000, 3000, 200, 900}, {2, Area::town, {}, 500, 100, 0, 50}};
    for (int purpose = 0; purpose < 4; ++purpose)
        for (int period = 0; period < 3; ++period) {
            auto const margins = marginsOf(static_cast<Purpose>(purpose), static_cast<Period>(period), zones);
            auto const total = [](std::vector<double> const& f) { return std::accumulate(f.begin(), f.end(), 0.0); };
            EXPECT_NEAR(total(margins.origins), total(margins.destinations), 1e-9);
            EXPECT_GT(total(margins.origins), 0);
        }
}

TEST(Demand, goesToWorkInTheMorningAndBackInTheEvening) {
    std::vector<Zone> const zones = {{1, Area::centre, {}, 100, 3000, 1, 1}, {2, Area::town, {}, 2000, 100, 1, 1}};
    auto const morning = marginsOf(Purpose::work, Period::morning, zones);
    auto const evening = marginsOf(Purpose::work, Period::evening, zones);
    EXPECT_GT(morning.destinations[0], morning.origins[0]);
    EXPECT_GT(evening.origins[0], evening.destinations[0]);
    // 0.45 trips per resident, 0.75 of which go out in the morning; 0.03 of all return from work.
    EXPECT_DOUBLE_EQ(morning.origins[1], 0.75 * 0.45 * 2000 + 0.03 * 0.45 * 2100 * 100 / 3100);
}

namespace {

SquareTable all(double value) {
    return SquareTable::of(2, [=](std::size_t, std::size_t) { return value; });
}

}

TEST(ModeChoice, agreesWithTheLogitComputedByHand) {
    auto const choice = chooseModes(Purpose::work, {all(20), all(30), all(25)}, {all(5), all(6), all(4)});
    double const car = std::exp(-0.06 * 20 - 0.03 * 5);
    double const transit = std::exp(0.1 - 0.06 * 30);
    double const bike = std::exp(-0.4 - 0.06 * 25 - 0.08 * 4);
    double const sum = car + transit + bike;
    EXPECT_DOUBLE_EQ(choice.shares[0].at(0, 1), car / sum);
    EXPECT_DOUBLE_EQ(choice.shares[1].at(0, 1), transit / sum);
    EXPECT_DOUBLE_EQ(choice.shares[2].at(0, 1), bike / sum);
    EXPECT_DOUBLE_EQ(choice.logsum.at(1, 0), std::log(sum));
}

TEST(ModeChoice, favoursTheFasterMode) {
    auto const slow = chooseModes(Purpose::other, {all(40), all(30), all(25)}, {all(5), all(6), all(4)});
    auto const fast = chooseModes(Purpose::other, {all(20), all(30), all(25)}, {all(5), all(6), all(4)});
    EXPECT_GT(fast.shares[0].at(0, 0), slow.shares[0].at(0, 0));
    EXPECT_GT(fast.logsum.at(0, 0), slow.logsum.at(0, 0));
}

}
