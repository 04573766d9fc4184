#include "host/platform/Parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

using namespace cubes::platform;

TEST(Parallel, runsEveryPieceOnceAndPassesOnTheFirstFailure) {
    std::vector<std::atomic<int>> done(1000);
    inParallel(done.size(), [&] { return [&](std::size_t i) { ++done[i]; }; });
    for (auto const& times : done) EXPECT_EQ(times, 1);
    inParallel(0, [] { return [](std::size_t) { FAIL(); }; });
    auto const failAtSeven = [](std::size_t i) {
        if (i == 7) throw std::runtime_error("seven");
    };
    EXPECT_THROW(inParallel(50, [&] { return failAtSeven; }), std::runtime_error);
}
