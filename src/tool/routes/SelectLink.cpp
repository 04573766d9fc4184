#include "tool/routes/SelectLink.h"

#include "tool/Errors.h"

#include <fmt/format.h>

#include <unordered_map>

namespace cubes::tool {

namespace {

class ZoneIndex {
public:
    explicit ZoneIndex(TripTable const& trips) {
        for (int i = 0; i < trips.rows; ++i)
            places_[trips.zones.empty() ? i + 1 : trips.zones[static_cast<std::size_t>(i)]] = i;
    }
    int operator[](std::int32_t zone) const {
        auto const found = places_.find(zone);
        if (found == places_.end()) throw Failure(fmt::format("the trips have no zone {}, where a route ends", zone));
        return found->second;
    }

private:
    std::unordered_map<std::int32_t, int> places_;
};

}

TripTable tripsOverLink(RouteSetFile const& routes, std::uint32_t link, TripTable const& trips) {
    if (!trips.isSquare()) throw Failure("the matrix of the trips is not square");
    ZoneIndex const zones(trips);
    TripTable shares = trips;
    std::fill(shares.cells.begin(), shares.cells.end(), 0.0f);
    for (auto const number : routes.overLink(link)) {
        auto const one = routes.route(number);
        shares.at(zones[one.origin], zones[one.destination]) += one.share;
    }
    // Without a share there are no trips, even where their number is infinite.
    for (std::size_t i = 0; i < shares.cells.size(); ++i)
        if (shares.cells[i] != 0) shares.cells[i] *= trips.cells[i];
    return shares;
}

}
