#include "tool/CityCubes.h"

namespace cubes::tool {

namespace {

constexpr short onlyUser = 1;
constexpr short noPurpose = 1;

int count(std::vector<std::string> const& names) {
    return static_cast<int>(names.size());
}

std::string nameAt(std::vector<std::string> const& names, int index) {
    return names[static_cast<std::size_t>(index)];
}

short oneBased(int index) {
    return static_cast<short>(index + 1);
}

CityMatrix made(City const& city, char const* cube, short purpose, int mode, int period, TripTable const& table) {
    Key const key = {purpose, oneBased(mode), oneBased(period), onlyUser};
    return {{{cube, std::nullopt}, key}, "", nameAt(city.modes, mode), nameAt(city.periods, period), &table};
}

void addTrips(City const& city, std::vector<CityMatrix>& matrices) {
    for (int purpose = 0; purpose < count(city.purposes); ++purpose)
        for (int mode = 0; mode < count(city.modes); ++mode)
            for (int period = 0; period < count(city.periods); ++period) {
                auto const& trips = city.trips(purpose, mode, period);
                matrices.push_back(made(city, tripsCube, oneBased(purpose), mode, period, trips));
                matrices.back().purpose = nameAt(city.purposes, purpose);
            }
}

using Skim = TripTable const& (City::*)(int mode, int period) const;

void addSkims(City const& city, char const* cube, Skim skim, std::vector<CityMatrix>& matrices) {
    for (int mode = 0; mode < count(city.modes); ++mode)
        for (int period = 0; period < count(city.periods); ++period)
            matrices.push_back(made(city, cube, noPurpose, mode, period, (city.*skim)(mode, period)));
}

}

std::vector<CityMatrix> matricesOf(City const& city) {
    std::vector<CityMatrix> matrices;
    addTrips(city, matrices);
    addSkims(city, "Distance", &City::distance, matrices);
    addSkims(city, "Time", &City::time, matrices);
    return matrices;
}

}
