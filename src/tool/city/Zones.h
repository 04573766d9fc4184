#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace cubes::tool {

/// A place on the plane, in kilometres from the middle of the city.
struct Point {
    double x = 0;
    double y = 0;
};

enum class Area { centre, suburb, town };

/// A zone of the city and what is in it.
struct Zone {
    std::int32_t number = 0;
    Area area = Area::centre;
    Point position;
    double residents = 0;
    double jobs = 0;
    /// Places in schools and colleges.
    double schoolPlaces = 0;
    /// Floor space of shops, in square metres.
    double shopSpace = 0;
};

/// Random numbers that are the same on every platform: the C++ standard fixes the engine, but not its
/// distributions.
class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    /// Evenly spread over [0, 1), in steps of 2^-53.
    double share() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
    /// Evenly spread over [least, most).
    double between(double least, double most) { return least + (most - least) * share(); }

private:
    std::mt19937_64 engine_;
};

/// The zones of a synthetic city: a dense centre full of jobs and shops, suburbs around it where most
/// people live, and towns farther out. Numbered from 1, from the centre outward.
/// REQUIRES: count is at least 3.
std::vector<Zone> layOutZones(int count, Random& random);

/// The distance between two points as the crow flies.
double crowDistance(Point const& from, Point const& to);

}
