#include "tool/Numbers.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

namespace cubes::tool {

namespace {

double numberOf(std::string const& text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

}

double trusted(double sum) {
    return std::isfinite(sum) ? numberOf(fmt::format("{:.9g}", sum)) : sum;
}

double shortest(float cell) {
    return std::isfinite(cell) ? numberOf(fmt::format("{}", cell)) : static_cast<double>(cell);
}

}
