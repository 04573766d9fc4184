#pragma once

#include "tool/city/SquareTable.h"
#include "tool/city/Zone.h"

#include <array>
#include <vector>

/// How one gets about in the city: what distances and times depend on.
namespace cubes::tool {

enum class Mode { car, transit, bike };
enum class Period { morning, midday, evening };

inline constexpr std::array<char const*, 3> modeNames = {"car", "transit", "bike"};
inline constexpr std::array<char const*, 3> periodNames = {"morning", "midday", "evening"};

/// Kilometres along the mode's network. Within a zone it is half the way to the nearest other
/// zone, the usual assumption where a model has no finer network.
SquareTable distancesBy(Mode mode, std::vector<Zone> const& zones);

/// Minutes from door to door over the given distances.
SquareTable timesBy(Mode mode, Period period, std::vector<Zone> const& zones, SquareTable const& distances);

}
