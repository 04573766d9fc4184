#include "tool/Statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace cubes::tool {

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

double share(double part, double whole) {
    return whole == 0 ? 0 : part / whole;
}

// Reorders the values.
double medianOf(std::vector<float>& values) {
    auto const middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1) return *middle;
    return (static_cast<double>(*middle) + *std::max_element(values.begin(), middle)) / 2;
}

class Counter {
public:
    Counter(int rows, int columns) {
        result_.rows = rows;
        result_.columns = columns;
        finite_.reserve(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns));
    }

    void addRow(std::span<float const> values, std::size_t row) {
        for (float const value : values) add(value);
        if (row < values.size() && std::isfinite(values[row])) diagonal_.add(values[row]);
    }

    Statistics finish() {
        finishSums();
        finishSpread();
        return result_;
    }

private:
    void add(float value) {
        if (value == 0) ++result_.zeros;
        if (value < 0) ++result_.negatives;
        if (std::isnan(value)) ++result_.nans;
        if (std::isinf(value)) ++result_.infinities;
        if (!std::isfinite(value)) return;
        total_.add(value);
        finite_.push_back(value);
    }

    void finishSums() {
        bool const isSquare = result_.rows == result_.columns;
        auto const cells = static_cast<double>(result_.rows) * result_.columns;
        result_.total = total_.value();
        result_.intrazonal = isSquare ? diagonal_.value() : none;
        result_.intrazonalShare = isSquare ? share(diagonal_.value(), total_.value()) : none;
        result_.nonZeroShare = share(cells - static_cast<double>(result_.zeros), cells);
    }

    void finishSpread() {
        result_.minimum = result_.maximum = result_.mean = result_.median = none;
        if (finite_.empty()) return;
        auto const [least, most] = std::minmax_element(finite_.begin(), finite_.end());
        result_.minimum = *least;
        result_.maximum = *most;
        result_.mean = result_.total / static_cast<double>(finite_.size());
        result_.median = medianOf(finite_);
    }

    Statistics result_;
    Sum total_;
    Sum diagonal_;
    std::vector<float> finite_;
};

}

Statistics statisticsOf(int rows, int columns, RowReader const& rowAt) {
    Counter counter(rows, columns);
    for (int row = 0; row < rows; ++row) counter.addRow(rowAt(row), static_cast<std::size_t>(row));
    return counter.finish();
}

Statistics statisticsOf(TRkMatrix const& matrix) {
    constexpr int anyAccess = 0;
    auto const width = static_cast<std::size_t>(matrix.Columns());
    return statisticsOf(matrix.Rows(), matrix.Columns(),
        [&](int row) { return std::span<float const>(matrix.RowAt(row, anyAccess), width); });
}

std::int64_t cellsIn(Statistics const& figures) {
    return std::int64_t{figures.rows} * figures.columns - figures.zeros;
}

}
