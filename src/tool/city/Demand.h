#pragma once

#include "tool/city/Travel.h"

#include <array>
#include <vector>

namespace cubes::tool {

// How many trips people make, and for what.
enum class Purpose { work, education, shopping, other };

inline constexpr std::array<char const*, 4> purposeNames = {"work", "education", "shopping", "other"};

/// The trip ends of each zone, of one purpose in one period, over all modes: row and column totals.
struct Margins {
    std::vector<double> origins;
    std::vector<double> destinations;
};

double totalOf(std::vector<double> const& figures);

/// Trip generation. Every trip goes from home to an activity or back. Productions depend on residents,
/// attractions on jobs, school places or shops; attractions are scaled to the total of the productions.
Margins marginsOf(Purpose purpose, Period period, std::vector<Zone> const& zones);

/// The share of each mode and the logsum of all modes, for every OD pair.
struct ModeChoice {
    std::vector<SquareTable> shares;
    SquareTable logsum;
};

/// A multinomial logit (McFadden 1974): a mode's utility falls with its time and distance, its share
/// is exp(utility) over the sum of all modes, and the logsum is the logarithm of that sum, the expected
/// utility of the best mode. Tables are by mode.
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

/// The deterrence function exp(sensitivity x logsum), with the sensitivity of the purpose.
SquareTable deterrenceOf(Purpose purpose, SquareTable const& logsum);

}
