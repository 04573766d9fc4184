#include "Samples.h"

#include "support/SystemMessages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace cubes::test;

namespace {

class RouteSetTest : public testing::Test {
protected:
    TempDir const directory;
    std::string const file = directory.file("routes.FDB");
};

constexpr auto largestLink = std::numeric_limits<std::uint32_t>::max();
constexpr auto smallestZone = std::numeric_limits<std::int32_t>::min();
constexpr auto largestZone = std::numeric_limits<std::int32_t>::max();

struct Sample {
    char const* name;
    std::vector<SampleRoute> routes;
};

void PrintTo(Sample const& sample, std::ostream* out) {
    *out << sample.name;
}

class EachSet : public RouteSetTest, public testing::WithParamInterface<Sample> {};

Sample const samples[] = {
    {"none", {}},
    {"small", smallSet()},
    {"withoutLinks", {{4, 4, {}, 1}}},
    {"someWithoutLinks", {{1, 1, {}, 1}, {1, 2, {7}, 1}, {2, 2, {}, 0}}},
    {"theSameTwice", {{1, 2, {5, 6}, 0.5f}, {1, 2, {5, 6}, 0.5f}}},
    {"aLinkTwiceInARoute", {{1, 2, {5, 6, 5}, 1}, {1, 3, {5, 5}, 1}}},
    {"linksOfTwoBytes", {{1, 2, {0, 65535}, 1}}},
    {"linksOfFourBytes", {{1, 2, {0, 65536, largestLink}, 1}, {2, 1, {largestLink, 1}, 1}}},
    {"zonesOfAnySign", {{largestZone, smallestZone, {1}, 1}, {smallestZone, -1, {2}, 1}, {-1, 0, {3}, 1}}},
    {"sharesOfAnySize", {{1, 2, {1}, 0}, {1, 3, {1}, -1}, {1, 4, {1}, std::numeric_limits<float>::max()}}},
};

}

TEST_P(EachSet, isReadAsItWasStored) {
    store(file, GetParam().routes);
    auto const set = routeSet(file, romRead);
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(routesOf(*set), GetParam().routes);
    std::size_t links = 0;
    for (auto const& route : GetParam().routes) links += route.links.size();
    EXPECT_EQ(set->countLinks(), static_cast<std::int64_t>(links));
    EXPECT_EQ(listing(directory.str()), "routes.FDB\n");
}

INSTANTIATE_TEST_SUITE_P(
    RouteSet, EachSet, testing::ValuesIn(samples), [](auto const& sample) { return std::string(sample.param.name); });

TEST_F(RouteSetTest, routesAreFoundByPairOriginAndLink) {
    store(file, smallSet());
    auto const set = routeSet(file, romRead);
    EXPECT_EQ(ofPair(*set, 1, 3), Numbers({0, 3}));
    EXPECT_EQ(ofPair(*set, 2, 3), Numbers({2}));
    EXPECT_EQ(ofOrigin(*set, 1), Numbers({1, 0, 3}));
    EXPECT_EQ(ofLink(*set, 10), Numbers({0, 1}));
    EXPECT_EQ(ofLink(*set, 20), Numbers({0, 2}));
    EXPECT_EQ(ofLink(*set, 15), Numbers({3}));
}

TEST_F(RouteSetTest, absentRoutesAreNotErrors) {
    store(file, smallSet());
    auto const set = routeSet(file, romRead);
    EXPECT_EQ(ofPair(*set, 3, 1), Numbers());
    EXPECT_EQ(ofPair(*set, 0, 0), Numbers());
    EXPECT_EQ(ofOrigin(*set, 3), Numbers());
    EXPECT_EQ(ofLink(*set, 11), Numbers());
    EXPECT_EQ(ofLink(*set, largestLink), Numbers());
    for (std::int64_t const number : {std::int64_t{-1}, std::int64_t{4}, std::numeric_limits<std::int64_t>::max()}) {
        Route route{7, 8, 9, nullptr, 10};
        EXPECT_EQ(set->getRoute(number, &route), rrAbsent);
        EXPECT_EQ(route.linkCount, 10);
    }
    EXPECT_EQ(lastError(), "");
}

TEST_F(RouteSetTest, aRouteThatUsesALinkTwiceIsFoundOnce) {
    store(file, {{1, 2, {5, 6, 5}, 1}, {1, 3, {5}, 1}});
    EXPECT_EQ(ofLink(*routeSet(file, romRead), 5), Numbers({0, 1}));
}

TEST_F(RouteSetTest, anEmptySetHasNoRoutes) {
    routeSet(file, romCreate);
    EXPECT_EQ(lastError(), "");
    for (auto const mode : {romRead, romExtend}) {
        auto const set = routeSet(file, mode);
        EXPECT_EQ(set->countRoutes(), 0);
        EXPECT_EQ(set->countLinks(), 0);
        EXPECT_EQ(ofPair(*set, 1, 2), Numbers());
        EXPECT_EQ(ofOrigin(*set, 1), Numbers());
        EXPECT_EQ(ofLink(*set, 1), Numbers());
    }
}

TEST_F(RouteSetTest, addedRoutesAreVisibleAtOnceAndStoredByCommit) {
    auto const set = routeSet(file, romCreate);
    add(*set, {1, 2, {5}, 1});
    EXPECT_EQ(ofLink(*set, 5), Numbers({0}));
    add(*set, {1, 3, {5, 6}, 1});
    EXPECT_EQ(ofLink(*set, 5), Numbers({0, 1}));
    EXPECT_EQ(routeSet(file, romRead)->countRoutes(), 0);
    EXPECT_EQ(set->commit(), rrDone);
    EXPECT_EQ(routeSet(file, romRead)->countRoutes(), 2);
    EXPECT_EQ(set->countRoutes(), 2);
}

TEST_F(RouteSetTest, extendingKeepsTheExistingRoutes) {
    store(file, smallSet());
    auto const set = routeSet(file, romExtend);
    add(*set, {3, 1, {30, 10}, 1});
    EXPECT_EQ(set->commit(), rrDone);
    auto all = smallSet();
    all.push_back({3, 1, {30, 10}, 1});
    auto const again = routeSet(file, romRead);
    EXPECT_EQ(routesOf(*again), all);
    EXPECT_EQ(ofLink(*again, 10), Numbers({0, 1, 4}));
}

TEST_F(RouteSetTest, creatingReplacesTheFileAndReopeningDropsUncommittedRoutes) {
    store(file, smallSet());
    auto const set = routeSet(file, romCreate);
    EXPECT_EQ(routeSet(file, romRead)->countRoutes(), 0);
    add(*set, {1, 2, {5}, 1});
    set->open(romRead, nullptr);
    EXPECT_EQ(set->countRoutes(), 0);
}

TEST_F(RouteSetTest, aRouteOfTheSetItselfMayBeAddedAgain) {
    auto const set = routeSet(file, romCreate);
    add(*set, {1, 2, Numbers(1000, 7), 1});
    for (int round = 0; round < 10; ++round) {
        Route route{};
        ASSERT_EQ(set->getRoute(0, &route), rrDone);
        ASSERT_EQ(set->addRoute(route), rrDone);
    }
    for (auto const& route : routesOf(*set)) EXPECT_EQ(route, (SampleRoute{1, 2, Numbers(1000, 7), 1}));
    EXPECT_EQ(set->countLinks(), 11000);
}

TEST_F(RouteSetTest, anInvalidRouteIsRefusedAndChangesNothing) {
    std::uint32_t const links[] = {1};
    struct {
        Route route;
        char const* reason;
    } const bad[] = {
        {{1, 2, 1, links, -1}, "its number of links is negative"},
        {{1, 2, 1, nullptr, 1}, "its links are missing"},
        {{1, 2, std::numeric_limits<float>::quiet_NaN(), links, 1}, "its share is not a finite number"},
        {{1, 2, std::numeric_limits<float>::infinity(), links, 1}, "its share is not a finite number"},
        {{1, 2, 1, links, std::numeric_limits<std::int64_t>::max()}, "too large"},
    };
    auto const set = routeSet(file, romCreate);
    for (auto const& each : bad) {
        EXPECT_EQ(set->addRoute(each.route), rrFailed);
        EXPECT_EQ(lastError(), "cannot add a route to " + file + ": " + each.reason);
        EXPECT_EQ(set->countRoutes(), 0);
        EXPECT_EQ(set->countLinks(), 0);
        EXPECT_EQ(lastError(), "");
    }
}

TEST_F(RouteSetTest, nothingIsAddedWhileReading) {
    store(file, smallSet());
    auto const set = routeSet(file, romRead);
    EXPECT_EQ(add(*set, {1, 2, {5}, 1}), rrFailed);
    EXPECT_EQ(lastError(), "cannot add a route to " + file + ": it is open for reading only");
    EXPECT_EQ(set->commit(), rrFailed);
    EXPECT_EQ(lastError(), "cannot write " + file + ": it is open for reading only");
    EXPECT_EQ(routesOf(*set), smallSet());
}

TEST_F(RouteSetTest, nothingCanBeReadBeforeOpening) {
    auto const set = routeSet(file);
    RouteNumbers found{};
    Route route{};
    EXPECT_EQ(add(*set, {1, 2, {5}, 1}), rrFailed);
    EXPECT_EQ(set->commit(), rrFailed);
    EXPECT_EQ(set->countRoutes(), rrFailed);
    EXPECT_EQ(set->countLinks(), rrFailed);
    EXPECT_EQ(set->getRoute(0, &route), rrFailed);
    EXPECT_EQ(set->findRoutesOfPair(1, 2, &found), rrFailed);
    EXPECT_EQ(set->findRoutesOfOrigin(1, &found), rrFailed);
    EXPECT_EQ(set->findRoutesOfLink(1, &found), rrFailed);
    EXPECT_EQ(lastError(), "cannot find routes in " + file + ": it is not open");
    EXPECT_EQ(listing(directory.str()), "");
}

TEST_F(RouteSetTest, onlyTheLowByteOfTheModeCounts) {
    auto const set = routeSet(file);
    set->open(257, nullptr);
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(add(*set, {1, 2, {5}, 1}), rrDone);
    set->open(3, nullptr);
    EXPECT_EQ(lastError(), "cannot open " + file + ": unknown mode 3");
    EXPECT_EQ(set->countRoutes(), rrFailed);
}

TEST_F(RouteSetTest, theLastErrorIsEmptyAfterAnOperationThatSucceeds) {
    auto const set = routeSet(file, romRead);
    EXPECT_EQ(lastError(), "cannot open " + file + ": " + noSuchFile());
    set->open(romCreate, nullptr);
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(set->getFileName(), file);
}
