#include "tool/city/Gravity.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace cubes::tool {

namespace {

using Figures = std::vector<double>;

// Leaves room for the rounding to single precision, so that trips add up within a millionth.
constexpr double tolerance = 5e-7;
constexpr int mostRounds = 1000;

// People go far to work, and shop where it is near.
constexpr double sensitivities[] = {1.1, 1.9, 1.9, 1.5};

Figures rowSums(SquareTable const& deterrence, Figures const& columnFactors) {
    Figures sums(deterrence.size());
    for (std::size_t i = 0; i < sums.size(); ++i)
        for (std::size_t j = 0; j < sums.size(); ++j) sums[i] += deterrence.at(i, j) * columnFactors[j];
    return sums;
}

Figures columnSums(SquareTable const& deterrence, Figures const& rowFactors) {
    Figures sums(deterrence.size());
    for (std::size_t i = 0; i < sums.size(); ++i)
        for (std::size_t j = 0; j < sums.size(); ++j) sums[j] += deterrence.at(i, j) * rowFactors[i];
    return sums;
}

Figures quotients(Figures const& totals, Figures const& sums) {
    Figures factors;
    for (std::size_t i = 0; i < totals.size(); ++i) factors.push_back(totals[i] == 0 ? 0 : totals[i] / sums[i]);
    return factors;
}

void requireSameTotal(Margins const& margins) {
    double const origins = totalOf(margins.origins);
    if (std::abs(totalOf(margins.destinations) - origins) > tolerance * origins)
        throw std::invalid_argument("origins and destinations have different totals");
}

// The largest change of a factor as a share of it: what the rows are off by.
double largestChange(Figures const& before, Figures const& after) {
    double largest = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
        if (after[i] != 0) largest = std::max(largest, std::abs(before[i] / after[i] - 1));
    return largest;
}

}

SquareTable distribute(Margins const& margins, SquareTable const& deterrence) {
    requireSameTotal(margins);
    Figures rows = margins.origins;
    for (int round = 0; round < mostRounds; ++round) {
        auto const columns = quotients(margins.destinations, columnSums(deterrence, rows));
        auto const before = rows;
        rows = quotients(margins.origins, rowSums(deterrence, columns));
        if (largestChange(before, rows) < tolerance)
            return SquareTable::of(deterrence.size(),
                [&](std::size_t i, std::size_t j) { return before[i] * columns[j] * deterrence.at(i, j); });
    }
    throw std::runtime_error("origins and destinations are not balanced after 1000 rounds");
}

SquareTable deterrenceOf(Purpose purpose, SquareTable const& ease) {
    double const sensitivity = sensitivities[static_cast<std::size_t>(purpose)];
    return SquareTable::of(
        ease.size(), [&](std::size_t i, std::size_t j) { return std::exp(sensitivity * ease.at(i, j)); });
}

}
