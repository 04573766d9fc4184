#pragma once

#include <cstdint>

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

}
