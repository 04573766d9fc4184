#include "tool/city/Demand.h"

#include <numeric>

namespace cubes::tool {

namespace {

using Figures = std::vector<double>;

// Shares of a day's trips out and back that are made in a period. The rest are made at night.
struct Flow {
    double out;
    double back;
};

struct Behaviour {
    double tripsPerResident; // out of home, a day
    double (*attraction)(Zone const&);
    Flow flows[3];
};

double jobsOf(Zone const& zone) {
    return zone.jobs;
}
double schoolPlacesOf(Zone const& zone) {
    return zone.schoolPlaces;
}
double shopSpaceOf(Zone const& zone) {
    return zone.shopSpace;
}
double peopleOf(Zone const& zone) {
    return zone.residents + zone.jobs;
}

// The periods are morning, midday and evening.
constexpr Behaviour behaviours[] = {
    {0.45, jobsOf, {{0.75, 0.03}, {0.12, 0.20}, {0.05, 0.65}}},
    {0.20, schoolPlacesOf, {{0.90, 0.00}, {0.10, 0.55}, {0.00, 0.40}}},
    {0.35, shopSpaceOf, {{0.10, 0.05}, {0.55, 0.50}, {0.30, 0.40}}},
    {0.50, peopleOf, {{0.15, 0.10}, {0.40, 0.35}, {0.35, 0.35}}},
};

Figures productionsOf(Behaviour const& behaviour, std::vector<Zone> const& zones) {
    Figures figures;
    for (auto const& zone : zones) figures.push_back(behaviour.tripsPerResident * zone.residents);
    return figures;
}

Figures attractionsOf(Behaviour const& behaviour, std::vector<Zone> const& zones, double total) {
    Figures figures;
    for (auto const& zone : zones) figures.push_back(behaviour.attraction(zone));
    double const scale = total / totalOf(figures);
    for (double& figure : figures) figure *= scale;
    return figures;
}

Figures mixed(Figures const& first, double firstShare, Figures const& second, double secondShare) {
    Figures figures;
    for (std::size_t i = 0; i < first.size(); ++i) figures.push_back(firstShare * first[i] + secondShare * second[i]);
    return figures;
}

}

double totalOf(std::vector<double> const& figures) {
    return std::accumulate(figures.begin(), figures.end(), 0.0);
}

Margins marginsOf(Purpose purpose, Period period, std::vector<Zone> const& zones) {
    auto const& behaviour = behaviours[static_cast<std::size_t>(purpose)];
    auto const flow = behaviour.flows[static_cast<std::size_t>(period)];
    auto const homes = productionsOf(behaviour, zones);
    auto const places = attractionsOf(behaviour, zones, totalOf(homes));
    return {mixed(homes, flow.out, places, flow.back), mixed(places, flow.out, homes, flow.back)};
}

}
