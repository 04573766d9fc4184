#pragma once

#include <cubes/matrix/TRkMatrix.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <span>

namespace cubes::tool {

/// Neumaier's compensated summation: keeps what each addition rounds away, so that the sum of many
/// cells does not depend on their order.
class Sum {
public:
    void add(double value) {
        double const next = sum_ + value;
        bool const sumIsLarger = std::abs(sum_) >= std::abs(value);
        rest_ += sumIsLarger ? (sum_ - next) + value : (value - next) + sum_;
        sum_ = next;
    }
    double value() const { return std::isfinite(sum_) ? sum_ + rest_ : sum_; }

private:
    double sum_ = 0;
    double rest_ = 0;
};

/// The figures that describe a matrix. Sums, extremes, mean and median are those of the finite values;
/// NaN and infinite ones are counted separately.
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

    bool isSquare() const noexcept { return rows == columns; }
};

/// Returns the values of a row, valid until the next call.
using RowReader = std::function<std::span<float const>(int row)>;

/// Reads every row once, in order, and keeps a copy of the finite values for the median.
Statistics statisticsOf(int rows, int columns, RowReader const& rowAt);
Statistics statisticsOf(TRkMatrix const& matrix);
/// The number of cells that contribute to the sums: those that are not zero.
std::int64_t cellsIn(Statistics const& figures);

}
