#include "tool/city/SelectedLink.h"

namespace cubes::tool {

namespace {

constexpr float accepted = 1.05f;

}

TripTable tripsOver(Link const& link, TripTable const& trips, TripTable const& distance) {
    // A skim's diagonal is the way within a zone; to the end of the link itself there is none.
    auto const way = [&](int from, int to) { return from == to ? 0 : distance.at(from, to); };
    float const length = way(link.from, link.to);
    TripTable passing = trips;
    for (int origin = 0; origin < trips.rows; ++origin)
        for (int destination = 0; destination < trips.columns; ++destination) {
            float const over = way(origin, link.from) + length + way(link.to, destination);
            if (origin == destination || over > accepted * way(origin, destination))
                passing.at(origin, destination) = 0;
        }
    return passing;
}

}
