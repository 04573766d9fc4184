#pragma once

#include "tool/city/Travel.h"

#include <array>
#include <vector>

namespace cubes::tool {

// How many trips people make, and for what.
enum class Purpose { work, education, shopping, other };

inline constexpr std::array<char const*, 4> purposeNames = {"work", "education", "shopping", "other"};

/// The trips that start and end in each zone, of one purpose in one period, over all modes.
struct Margins {
    std::vector<double> origins;
    std::vector<double> destinations;
};

double totalOf(std::vector<double> const& figures);

/// Every trip goes out from home to where its purpose is, or back. Homes produce trips by their
/// residents; zones attract them by jobs, school places or shops. Attractions are scaled so that
/// both sides have the same total.
Margins marginsOf(Purpose purpose, Period period, std::vector<Zone> const& zones);

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

/// The doubly constrained gravity model (Wilson 1967): trips from i to j are
/// a(i) origins(i) b(j) destinations(j) deterrence(i, j), with the factors a and b chosen so that
/// rows add up to the origins and columns to the destinations. They are found by balancing rows
/// and columns in turn (Furness 1965) until the rows are right within half a millionth.
/// Throws std::invalid_argument for margins of different totals, and std::runtime_error when the
/// rows are not right after a thousand rounds.
/// REQUIRES: deterrence is above 0 everywhere.
SquareTable distribute(Margins const& margins, SquareTable const& deterrence);

/// How willing people are to go where it is as easy as told: exp(sensitivity x ease), with the
/// sensitivity of the purpose. The harder it is to get somewhere the less it draws.
SquareTable deterrenceOf(Purpose purpose, SquareTable const& ease);

}
