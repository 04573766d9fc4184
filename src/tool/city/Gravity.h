#pragma once

#include "tool/city/Demand.h"

namespace cubes::tool {

/// The doubly constrained gravity model (Wilson 1967): trips from i to j are
/// a(i) origins(i) b(j) destinations(j) deterrence(i, j), with the factors a and b chosen so that
/// rows add up to the origins and columns to the destinations. They are found by balancing rows
/// and columns in turn (Furness 1965) until the rows are right within half a millionth.
/// Throws std::runtime_error when that does not end, as it must for margins of different totals.
/// REQUIRES: deterrence is above 0 everywhere.
SquareTable distribute(Margins const& margins, SquareTable const& deterrence);

/// How willing people are to go where it is as easy as told: exp(sensitivity x ease), with the
/// sensitivity of the purpose. The harder it is to get somewhere the less it draws.
SquareTable deterrenceOf(Purpose purpose, SquareTable const& ease);

}
