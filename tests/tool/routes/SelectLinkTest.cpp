#include "tool/routes/SelectLink.h"

#include "support/TempDir.h"
#include "tool/Errors.h"

#include <gtest/gtest.h>

#include <limits>

namespace cubes::tool {

namespace {

/// Between each two of three zones two routes: a quarter of the trips over links 1 and 2 (and in a
/// circle over 1 again), three quarters over 3 and, from zone 1 only, 1. Within a zone: no links.
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

TEST_F(SelectLink, takesTheSharesWhoseRoutesLeadOverIt) {
    auto const routes = routesBetween(1, 2, 3);
    EXPECT_EQ(selected(routes, 2, tripsOf({1, 2, 3})), overTwo);
    EXPECT_EQ(selected(routes, 3, tripsOf({1, 2, 3})), overThree);
}

TEST_F(SelectLink, countsARouteOnceThatPassesTwice) {
    EXPECT_EQ(selected(routesBetween(1, 2, 3), 1, tripsOf({1, 2, 3})), overOne);
}

TEST_F(SelectLink, knowsZonesByTheirNumbersInAnyOrder) {
    EXPECT_EQ(selected(routesBetween(70, 5, 11), 1, tripsOf({70, 5, 11})), overOne);
    EXPECT_EQ(selected(routesBetween(2, 3, 1), 1, tripsOf({2, 3, 1})), overOne);
}

TEST_F(SelectLink, knowsZonesByTheirPositionsWhereThereAreNoNumbers) {
    EXPECT_EQ(selected(routesBetween(1, 2, 3), 1, tripsOf({})), overOne);
}

TEST_F(SelectLink, selectsNothingOfALinkWithoutRoutes) {
    EXPECT_EQ(selected(routesBetween(1, 2, 3), 4, tripsOf({1, 2, 3})), Cells(9));
    EXPECT_EQ(selected({}, 1, tripsOf({1, 2, 3})), Cells(9));
}

TEST_F(SelectLink, leavesPairsAloneWhoseTripsAreNoFiniteNumbers) {
    auto trips = tripsOf({1, 2, 3});
    trips.at(0, 0) = std::numeric_limits<float>::quiet_NaN();
    trips.at(1, 1) = std::numeric_limits<float>::infinity();
    trips.at(0, 2) = std::numeric_limits<float>::infinity();
    auto cells = overOne;
    cells[2] = std::numeric_limits<float>::infinity();
    EXPECT_EQ(selected(routesBetween(1, 2, 3), 1, trips), cells);
}

TEST_F(SelectLink, refusesARouteToAZoneThatTheTripsHaveNot) {
    EXPECT_EQ(refusal(routesBetween(1, 2, 4), tripsOf({1, 2, 3})), "the trips have no zone 4, where a route ends");
    EXPECT_EQ(refusal(routesBetween(1, 2, 4), tripsOf({})), "the trips have no zone 4, where a route ends");
    EXPECT_EQ(refusal(routesBetween(1, 2, 3), tripsOf({1, 2, 4})), "the trips have no zone 3, where a route ends");
    EXPECT_EQ(refusal(routesBetween(0, 1, 2), tripsOf({})), "the trips have no zone 0, where a route ends");
}

TEST_F(SelectLink, refusesTripsThatAreNotSquare) {
    TripTable trips;
    trips.rows = 2;
    trips.columns = 3;
    trips.cells.resize(6);
    EXPECT_EQ(refusal(routesBetween(1, 2, 3), trips), "the matrix of the trips is not square");
}

}
