#include "tool/city/Roads.h"

#include "tool/city/City.h"

#include <gtest/gtest.h>

namespace cubes::tool {

namespace {

TripTable table(std::vector<float> cells) {
    TripTable made;
    made.rows = made.columns = 3;
    made.cells = std::move(cells);
    return made;
}

// Three zones in a line, 10 km apart. The diagonal is the distance within a zone.
TripTable const distance = table({2, 10, 20, 10, 2, 10, 20, 10, 2});
TripTable const trips = table({1, 2, 3, 4, 5, 6, 7, 8, 9});

struct Case {
    Link link;
    std::vector<float> passing;
};

TEST(SelectedLink, carriesTheOdPairsWhoseShortestPathUsesIt) {
    Case const cases[] = {
        {{0, 1}, {0, 2, 3, 0, 0, 0, 0, 0, 0}},
        {{1, 2}, {0, 0, 3, 0, 0, 6, 0, 0, 0}},
        {{2, 1}, {0, 0, 0, 0, 0, 0, 7, 8, 0}},
        // The link between the end zones is as short as the path through the middle.
        {{0, 2}, {0, 0, 3, 0, 0, 0, 0, 0, 0}},
    };
    for (auto const& [link, passing] : cases)
        EXPECT_EQ(tripsOver(link, trips, distance).cells, passing) << link.from << " " << link.to;
}

TEST(SelectedLink, carriesPathsUpToFivePerCentLonger) {
    for (auto const& [direct, expected] : {std::pair{20.0f, 3.0f}, {19.1f, 3.0f}, {19.0f, 0.0f}}) {
        TripTable shorter = distance;
        shorter.cells[2] = direct;
        EXPECT_EQ(tripsOver({0, 1}, trips, shorter).at(0, 2), expected) << direct;
    }
}

TEST(SelectedLink, ofTheCityCarrySubsetsOfItsTrips) {
    City const city = makeCity({.seed = 1, .zones = 60});
    for (int purpose = 0; purpose < static_cast<int>(city.purposes.size()); ++purpose) {
        auto const& all = city.trips(purpose, 0, 0).cells;
        auto const& first = city.tripsOverLinks(purpose, 0).cells;
        auto const& second = city.tripsOverLinks(purpose, 1).cells;
        int passing = 0;
        for (std::size_t i = 0; i < all.size(); ++i) {
            EXPECT_TRUE(first[i] == all[i] || first[i] == 0) << purpose << " " << i;
            EXPECT_TRUE(second[i] == first[i] || second[i] == 0) << purpose << " " << i;
            passing += second[i] > 0 ? 1 : 0;
        }
        EXPECT_GT(passing, 0) << purpose;
        EXPECT_LT(passing, static_cast<int>(all.size())) << purpose;
    }
}

}

}
