#pragma once

#include <cubes/text/TRkString.h>

#include <array>
#include <span>

/// The names of route files, as the entry table stores them: with "\" on every platform.
namespace cubes::routestorage {

inline constexpr char const* routeSetDirectory = "RouteStorage_Routes";
inline constexpr char const* routeDataDirectory = "RouteStorage_RouteData";

/// Purpose, mode, time, user, result, iteration.
using Parts = std::array<short, 6>;

/// "RouteStorage_Routes\1-2-3-1-1-1."
TRkString routeFileStem(char const* directory, Parts const& parts);

/// Parses such a name, with or without one of the directories. False, and zeros, for a text that
/// does not have six parts.
bool readRouteFileName(char const* text, std::span<char const* const> directories, std::array<int*, 6> const& numbers);

}
