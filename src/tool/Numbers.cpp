#include "tool/Numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace cubes::tool {

namespace {

constexpr double cellRounding = 6e-8;
constexpr double ninthDigit = 5e-9;
constexpr int mostDigits = 9;

double numberOf(std::string const& text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

}

double trusted(double sum, std::int64_t cells) {
    if (!std::isfinite(sum)) return sum;
    double const count = static_cast<double>(std::max<std::int64_t>(cells, 1));
    double const error = std::abs(sum) * std::max(cellRounding / std::sqrt(count), ninthDigit);
    for (int digits = 1; digits < mostDigits; ++digits) {
        double const rounded = numberOf(fmt::format("{:.{}g}", sum, digits));
        if (std::abs(rounded - sum) <= error) return rounded;
    }
    return numberOf(fmt::format("{:.{}g}", sum, mostDigits));
}

double shortest(float cell) {
    return std::isfinite(cell) ? numberOf(fmt::format("{}", cell)) : static_cast<double>(cell);
}

}
