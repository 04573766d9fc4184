#pragma once

#include "tool/city/Demand.h"

#include <vector>

namespace cubes::tool {

/// For every pair of zones, the share of each mode, and how easy the trip is by all of them together.
struct ModeChoice {
    std::vector<SquareTable> shares;
    SquareTable ease;
};

/// A multinomial logit (McFadden 1974): a mode's utility falls with its time and distance, its share
/// is exp(utility) over the sum of all modes', and the ease is the logarithm of that sum, the utility
/// that the best mode is expected to have. Tables are by mode.
ModeChoice chooseModes(
    Purpose purpose, std::vector<SquareTable> const& times, std::vector<SquareTable> const& distances);

}
