#pragma once

#include <cmath>

namespace cubes::tool {

/// Adds up numbers and keeps what each addition rounds away (Neumaier's compensated summation),
/// so that the sum of many cells does not depend on their order.
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

}
