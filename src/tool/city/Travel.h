#pragma once

#include "tool/city/Zones.h"

#include <array>
#include <cstddef>
#include <vector>

namespace cubes::tool {

/// A value for every pair of zones, in double precision for computing.
class SquareTable {
public:
    explicit SquareTable(std::size_t size) : size_(size), values_(size * size) {}

    std::size_t size() const noexcept { return size_; }
    double& at(std::size_t row, std::size_t column) { return values_[row * size_ + column]; }
    double at(std::size_t row, std::size_t column) const { return values_[row * size_ + column]; }

    /// A table whose values are those of a function of row and column.
    template <typename Function>
    static SquareTable of(std::size_t size, Function valueOf) {
        SquareTable table(size);
        for (std::size_t row = 0; row < size; ++row)
            for (std::size_t column = 0; column < size; ++column) table.at(row, column) = valueOf(row, column);
        return table;
    }

private:
    std::size_t size_;
    std::vector<double> values_;
};

// How one gets about in the city: what distances and times depend on.
enum class Mode { car, transit, bike };
enum class Period { morning, midday, evening };

inline constexpr std::array<char const*, 3> modeNames = {"car", "transit", "bike"};
inline constexpr std::array<char const*, 3> periodNames = {"morning", "midday", "evening"};

/// Kilometres along the mode's network. The intrazonal distance is half the distance to the nearest
/// other zone, as usual.
SquareTable distancesBy(Mode mode, std::vector<Zone> const& zones);

/// Minutes from door to door over the given distances.
SquareTable timesBy(Mode mode, Period period, std::vector<Zone> const& zones, SquareTable const& distances);

}
