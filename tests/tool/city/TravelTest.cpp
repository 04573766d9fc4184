#include "tool/city/Travel.h"

#include <gtest/gtest.h>

namespace cubes::tool {

namespace {

Zone zoneAt(double x, double y, Area area) {
    Zone zone;
    zone.position = {x, y};
    zone.area = area;
    return zone;
}

// centre --4 km-- suburb --6 km-- town, in a line
std::vector<Zone> line() {
    return {zoneAt(0, 0, Area::centre), zoneAt(4, 0, Area::suburb), zoneAt(10, 0, Area::town)};
}

}

TEST(Distances, areStraightLinesTimesADetourFactor) {
    auto const car = distancesBy(Mode::car, line());
    EXPECT_DOUBLE_EQ(car.at(0, 1), 5);
    EXPECT_DOUBLE_EQ(car.at(2, 0), 12.5);
    EXPECT_DOUBLE_EQ(distancesBy(Mode::bike, line()).at(0, 2), 12);
}

TEST(Distances, withinAZoneAreHalfTheDistanceToTheNearestZone) {
    auto const car = distancesBy(Mode::car, line());
    EXPECT_DOUBLE_EQ(car.at(0, 0), 2.5);
    EXPECT_DOUBLE_EQ(car.at(1, 1), 2.5);
    EXPECT_DOUBLE_EQ(car.at(2, 2), 3.75);
}

TEST(Times, agreeWithValuesComputedByHand) {
    auto const times = [](Mode mode, Period period) {
        return timesBy(mode, period, line(), distancesBy(mode, line()));
    };
    // 5 km at the mean of 26 and 42 km/h, delayed by 0.5 times the mean of 1 and 0.7, plus 2 minutes of parking.
    EXPECT_DOUBLE_EQ(times(Mode::car, Period::morning).at(0, 1), 60 * 5 / 34.0 * 1.425 + 2);
    EXPECT_DOUBLE_EQ(times(Mode::car, Period::morning).at(1, 0), 60 * 5 / 34.0 * 1.425 + 6);
    EXPECT_DOUBLE_EQ(times(Mode::transit, Period::midday).at(0, 2), 4 + 8 + 60 * 13.5 / 28 + 9);
    EXPECT_DOUBLE_EQ(times(Mode::bike, Period::evening).at(0, 1), 1 + 60 * 4.8 / 15);
}

TEST(Times, ofCarsAreLongerInThePeak) {
    auto const distances = distancesBy(Mode::car, line());
    auto const morning = timesBy(Mode::car, Period::morning, line(), distances);
    auto const midday = timesBy(Mode::car, Period::midday, line(), distances);
    for (std::size_t from = 0; from < 3; ++from)
        for (std::size_t to = 0; to < 3; ++to) EXPECT_GT(morning.at(from, to), midday.at(from, to));
}

}
