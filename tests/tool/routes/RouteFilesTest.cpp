#include "tool/routes/RouteFiles.h"

#include "support/SystemMessages.h"
#include "support/TempDir.h"
#include "tool/Errors.h"

#include <gtest/gtest.h>

#include <limits>

namespace cubes::tool {

namespace {

using namespace VL::Interface;

constexpr RouteKey key{-9, {1, 2, 3, 4, 5, 6}};

class RouteFiles : public testing::Test {
protected:
    template <typename Work>
    static std::string failure(Work const& work) {
        try {
            work();
            return {};
        } catch (Failure const& error) {
            return error.what();
        }
    }

    test::TempDir const directory;
    std::string const file = directory.file("a.FDB");
};

}

TEST_F(RouteFiles, returnRoutesByOdPairAndLink) {
    RouteList routes;
    routes.begin(1, 3, 0.75f);
    routes.addLink(10);
    routes.addLink(4294967295);
    routes.begin(1, 3, 0.25f);
    routes.begin(2, 3, 1);
    routes.addLink(10);
    writeRouteSet(file, key, routes);

    RouteSetFile const set(file);
    EXPECT_EQ(set.size(), 3u);
    EXPECT_EQ(set.linkCount(), 3u);
    auto const first = set.route(0);
    EXPECT_EQ(first.origin, 1);
    EXPECT_EQ(first.destination, 3);
    EXPECT_EQ(first.share, 0.75f);
    EXPECT_EQ(std::vector(first.links.begin(), first.links.end()), (std::vector<std::uint32_t>{10, 4294967295}));
    EXPECT_TRUE(set.route(1).links.empty());
    EXPECT_EQ(set.ofPair(1, 3), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(set.ofPair(3, 1), std::vector<std::size_t>());
    EXPECT_EQ(set.overLink(10), (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(set.overLink(11), std::vector<std::size_t>());
}

TEST_F(RouteFiles, preserveTheExtremeValuesOfEachType) {
    std::vector<RouteValues> const fields = {{"tolled", rftBoolean, {0, 1}}, {"class", rftBytes, {0, 255}},
        {"stops", rftSmallint, {-32768, 32767}}, {"number", rftInteger, {-2147483648.0, 2147483647}},
        {"time", rftFloat, {-0.5, 3.4028234663852886e38}}, {"cost", rftDouble, {0.1, -1.7976931348623157e308}}};
    writeRouteData(file, key, fields);
    auto const back = readRouteData(file);
    ASSERT_EQ(back.size(), fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        EXPECT_EQ(back[i].name, fields[i].name);
        EXPECT_EQ(back[i].type, fields[i].type);
        EXPECT_EQ(back[i].values, fields[i].values) << fields[i].name;
    }
}

TEST_F(RouteFiles, withoutRoutesAreEmpty) {
    writeRouteSet(file, key, {});
    EXPECT_EQ(RouteSetFile(file).size(), 0u);
    EXPECT_EQ(RouteSetFile(file).overLink(1), std::vector<std::size_t>());
    writeRouteData(file, key, {});
    EXPECT_TRUE(readRouteData(file).empty());
}

TEST_F(RouteFiles, replaceExistingOnes) {
    RouteList routes;
    routes.begin(1, 2, 1);
    writeRouteSet(file, key, routes);
    writeRouteSet(file, key, {});
    EXPECT_EQ(RouteSetFile(file).size(), 0u);
    EXPECT_EQ(test::listing(directory.str()), "a.FDB\n");
}

TEST_F(RouteFiles, reportWhyTheyCannotBeReadOrWritten) {
    auto const readSet = [&] { RouteSetFile const set(file); };
    auto const readData = [&] { readRouteData(file); };
    EXPECT_EQ(failure(readSet), file + ": " + test::noSuchFile());
    EXPECT_EQ(failure(readData), file + ": " + test::noSuchFile());
    test::writeFile(file, "no routes");
    EXPECT_TRUE(failure(readSet).starts_with(file + ": ")) << failure(readSet);
    EXPECT_TRUE(failure(readData).starts_with(file + ": ")) << failure(readData);
    auto const nowhere = directory.file("none/a.FDB");
    EXPECT_NE(failure([&] { writeRouteSet(nowhere, key, {}); }).find(nowhere), std::string::npos);
    EXPECT_NE(failure([&] { writeRouteData(nowhere, key, {}); }).find(nowhere), std::string::npos);
}

TEST_F(RouteFiles, ofOneKindAreNotReadAsTheOther) {
    writeRouteData(file, key, {{"a", rftFloat, {1}}});
    EXPECT_NE(failure([&] { RouteSetFile const set(file); }), "");
    writeRouteSet(file, key, {});
    EXPECT_NE(failure([&] { readRouteData(file); }), "");
}

TEST_F(RouteFiles, refuseWhatTheProviderRefuses) {
    EXPECT_NE(failure([&] { writeRouteData(file, key, {{"a\tb", rftFloat, {1}}}); }), "");
    EXPECT_NE(failure([&] { writeRouteData(file, key, {{"a", rftFloat, {1}}, {"b", rftFloat, {1, 2}}}); }), "");
}

namespace {

/// Two routes between each two of three zones: a quarter of the trips over links 1 and 2 (and 1 again, in a loop),
/// three quarters over 3 and, from zone 1 only, 1. Within a zone: no links.
RouteList routesBetween(std::int32_t first, std::int32_t second, std::int32_t third) {
    RouteList routes;
    std::int32_t const zones[] = {first, second, third};
    for (auto const origin : zones)
        for (auto const destination : zones) {
            routes.begin(origin, destination, origin == destination ? 1.0f : 0.25f);
            if (origin == destination) continue;
            for (std::uint32_t const link : {1u, 2u, 1u}) routes.addLink(link);
            routes.begin(origin, destination, 0.75f);
            routes.addLink(3);
            if (origin == first) routes.addLink(1);
        }
    return routes;
}

TripTable tripsOf(std::vector<std::int32_t> zones) {
    TripTable trips;
    trips.rows = trips.columns = 3;
    trips.zones = std::move(zones);
    trips.cells = {1, 8, 16, 32, 2, 64, 0, 100, 4};
    return trips;
}

class SelectLink : public testing::Test {
protected:
    std::vector<float> selected(RouteList const& routes, std::uint32_t link, TripTable const& trips) const {
        writeRouteSet(file, {-9, {1, 1, 1, 1, 1, 1}}, routes);
        auto const table = tripsOverLink(RouteSetFile(file), link, trips);
        EXPECT_EQ(table.zones, trips.zones);
        return table.cells;
    }
    std::string refusal(RouteList const& routes, TripTable const& trips) const {
        try {
            selected(routes, 1, trips);
            return {};
        } catch (Failure const& error) {
            return error.what();
        }
    }

    test::TempDir const directory;
    std::string const file = directory.file("routes.FDB");
};

using Cells = std::vector<float>;
Cells const overOne = {0, 8, 16, 8, 0, 16, 0, 25, 0};
Cells const overTwo = {0, 2, 4, 8, 0, 16, 0, 25, 0};
Cells const overThree = {0, 6, 12, 24, 0, 48, 0, 75, 0};

}

TEST_F(SelectLink, addsTheSharesOfTheRoutesOverTheLink) {
    auto const routes = routesBetween(1, 2, 3);
    EXPECT_EQ(selected(routes, 2, tripsOf({1, 2, 3})), overTwo);
    EXPECT_EQ(selected(routes, 3, tripsOf({1, 2, 3})), overThree);
}

TEST_F(SelectLink, countsARouteThatUsesTheLinkTwiceOnce) {
    EXPECT_EQ(selected(routesBetween(1, 2, 3), 1, tripsOf({1, 2, 3})), overOne);
}

TEST_F(SelectLink, findsZonesByTheirNumbersInAnyOrder) {
    EXPECT_EQ(selected(routesBetween(70, 5, 11), 1, tripsOf({70, 5, 11})), overOne);
    EXPECT_EQ(selected(routesBetween(2, 3, 1), 1, tripsOf({2, 3, 1})), overOne);
}

TEST_F(SelectLink, findsZonesByTheirPositionsWithoutZoneNumbers) {
    EXPECT_EQ(selected(routesBetween(1, 2, 3), 1, tripsOf({})), overOne);
}

TEST_F(SelectLink, isEmptyForALinkWithoutRoutes) {
    EXPECT_EQ(selected(routesBetween(1, 2, 3), 4, tripsOf({1, 2, 3})), Cells(9));
    EXPECT_EQ(selected({}, 1, tripsOf({1, 2, 3})), Cells(9));
}

TEST_F(SelectLink, skipsOdPairsWithInfiniteTripsOrNaN) {
    auto trips = tripsOf({1, 2, 3});
    trips.at(0, 0) = std::numeric_limits<float>::quiet_NaN();
    trips.at(1, 1) = std::numeric_limits<float>::infinity();
    trips.at(0, 2) = std::numeric_limits<float>::infinity();
    auto cells = overOne;
    cells[2] = std::numeric_limits<float>::infinity();
    EXPECT_EQ(selected(routesBetween(1, 2, 3), 1, trips), cells);
}

TEST_F(SelectLink, refusesARouteToAZoneThatTheTripTableDoesNotHave) {
    EXPECT_EQ(refusal(routesBetween(1, 2, 4), tripsOf({1, 2, 3})),
        "the matrix of the trips has no zone 4, where a route begins or ends");
    EXPECT_EQ(refusal(routesBetween(1, 2, 4), tripsOf({})),
        "the matrix of the trips has no zone 4, where a route begins or ends");
    EXPECT_EQ(refusal(routesBetween(1, 2, 3), tripsOf({1, 2, 4})),
        "the matrix of the trips has no zone 3, where a route begins or ends");
    EXPECT_EQ(refusal(routesBetween(0, 1, 2), tripsOf({})),
        "the matrix of the trips has no zone 0, where a route begins or ends");
}

TEST_F(SelectLink, refusesANonSquareTripTable) {
    TripTable trips;
    trips.rows = 2;
    trips.columns = 3;
    trips.cells.resize(6);
    EXPECT_EQ(refusal(routesBetween(1, 2, 3), trips), "the matrix of the trips is not square");
}

}
