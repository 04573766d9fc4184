#include "tool/CityCubes.h"

namespace cubes::tool {

namespace {

constexpr short onlyUser = 1;
constexpr short noPurpose = 1;
constexpr short distanceResult = 1;
constexpr short timeResult = 2;
constexpr short firstIteration = 1;

short numberAt(int index) {
    return static_cast<short>(index + 1);
}

EntryWord tripsAt(int purpose, int mode, int period) {
    return {{tripsCube, std::nullopt}, {numberAt(purpose), numberAt(mode), numberAt(period), onlyUser}};
}

EntryWord skimAt(int mode, int period, short result) {
    return {parseCube("skim"), {noPurpose, numberAt(mode), numberAt(period), onlyUser, result, firstIteration}};
}

EntryWord selectedLinkAt(int purpose, short iteration) {
    return {parseCube("selectedlink"), {numberAt(purpose), 1, 1, onlyUser, 1, iteration}};
}

void addTrips(City const& city, std::vector<CityMatrix>& matrices) {
    for (int purpose = 0; purpose < count(city.purposes); ++purpose)
        for (int mode = 0; mode < count(city.modes); ++mode)
            for (int period = 0; period < count(city.periods); ++period)
                matrices.push_back({tripsAt(purpose, mode, period), {}, nameAt(city.purposes, purpose),
                    nameAt(city.modes, mode), nameAt(city.periods, period), &city.trips(purpose, mode, period)});
}

// Times were worked out over the distances.
void addSkims(City const& city, std::vector<CityMatrix>& matrices) {
    for (int mode = 0; mode < count(city.modes); ++mode)
        for (int period = 0; period < count(city.periods); ++period) {
            auto const distance = skimAt(mode, period, distanceResult);
            auto const add = [&](EntryWord const& entry, std::optional<EntryWord> const& parent,
                                 TripTable const& table) {
                matrices.push_back({entry, parent, "", nameAt(city.modes, mode), nameAt(city.periods, period), &table});
            };
            add(distance, {}, city.distance(mode, period));
            add(skimAt(mode, period, timeResult), distance, city.time(mode, period));
        }
}

void addSelectedLinks(City const& city, std::vector<CityMatrix>& matrices) {
    for (int purpose = 0; purpose < count(city.purposes); ++purpose) {
        EntryWord parent = tripsAt(purpose, 0, 0);
        for (int link : {0, 1}) {
            auto const entry = selectedLinkAt(purpose, numberAt(link));
            matrices.push_back({entry, parent, nameAt(city.purposes, purpose), city.modes.front(), city.periods.front(),
                &city.tripsOverLinks(purpose, link)});
            parent = entry;
        }
    }
}

}

std::vector<CityMatrix> matricesOf(City const& city) {
    std::vector<CityMatrix> matrices;
    addTrips(city, matrices);
    addSkims(city, matrices);
    addSelectedLinks(city, matrices);
    return matrices;
}

}
