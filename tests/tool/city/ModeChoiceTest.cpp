#include "tool/city/ModeChoice.h"

#include <gtest/gtest.h>

#include <cmath>

namespace cubes::tool {

namespace {

SquareTable all(double value) {
    return SquareTable::of(2, [=](std::size_t, std::size_t) { return value; });
}

}

TEST(ModeChoice, isTheLogitComputedByHand) {
    auto const choice = chooseModes(Purpose::work, {all(20), all(30), all(25)}, {all(5), all(6), all(4)});
    double const car = std::exp(-0.06 * 20 - 0.03 * 5);
    double const transit = std::exp(0.1 - 0.06 * 30);
    double const bike = std::exp(-0.4 - 0.06 * 25 - 0.08 * 4);
    double const sum = car + transit + bike;
    EXPECT_DOUBLE_EQ(choice.shares[0].at(0, 1), car / sum);
    EXPECT_DOUBLE_EQ(choice.shares[1].at(0, 1), transit / sum);
    EXPECT_DOUBLE_EQ(choice.shares[2].at(0, 1), bike / sum);
    EXPECT_DOUBLE_EQ(choice.ease.at(1, 0), std::log(sum));
}

TEST(ModeChoice, favoursTheFasterMode) {
    auto const slow = chooseModes(Purpose::other, {all(40), all(30), all(25)}, {all(5), all(6), all(4)});
    auto const fast = chooseModes(Purpose::other, {all(20), all(30), all(25)}, {all(5), all(6), all(4)});
    EXPECT_GT(fast.shares[0].at(0, 0), slow.shares[0].at(0, 0));
    EXPECT_GT(fast.ease.at(0, 0), slow.ease.at(0, 0));
}

}
