#include "host/matrix/FileHeader.h"

#include <limits>
#include <stdexcept>

namespace cubes::matrix {

std::size_t elementCount(std::uint64_t rows, std::uint64_t columns) {
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<int>::max());
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(float);
    // Both dimensions fit into 31 bits, so their product can't overflow.
    if (rows < 1 || columns < 1 || rows > largest || columns > largest || rows * columns > most)
        throw std::length_error(
            "a matrix of " + std::to_string(rows) + " x " + std::to_string(columns) + " elements is not possible");
    return static_cast<std::size_t>(rows * columns);
}

}
