#pragma once

#include "tool/city/Travel.h"

#include <array>
#include <vector>

/// How many trips people make, and for what.
namespace cubes::tool {

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

}
