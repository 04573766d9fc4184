#pragma once

#include <cstdint>
#include <functional>
#include <span>

namespace cubes::tool {

/// The figures that tell what is in a matrix. Sums, extremes, mean and median are those of the
/// finite values; NaN and infinite ones are counted apart.
struct Statistics {
    int rows = 0;
    int columns = 0;
    double total = 0;
    /// Sum of the diagonal and its share of the total (0 when the total is 0). Both are NaN for a
    /// matrix that is not square, which has no intrazonal cells.
    double intrazonal = 0;
    double intrazonalShare = 0;
    std::int64_t zeros = 0;
    /// Share of all cells that are not zero; NaN and infinite cells are not zero.
    double nonZeroShare = 0;
    /// NaN when there is no finite value. The median of an even number of values is the mean of
    /// the two in the middle.
    double minimum = 0;
    double maximum = 0;
    double mean = 0;
    double median = 0;
    std::int64_t nans = 0;
    std::int64_t infinities = 0;
    /// Values below 0, negative infinity among them.
    std::int64_t negatives = 0;
};

/// Gives the values of a row, valid until the next row is asked for.
using RowReader = std::function<std::span<float const>(int row)>;

/// Asks for every row once, in order, and keeps a copy of the finite values for the median.
Statistics statisticsOf(int rows, int columns, RowReader const& rowAt);

}
