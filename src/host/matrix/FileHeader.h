#pragma once

#include <cubes/matrix/RkMatrixKind.h>
#include <cubes/matrix/RkMatrixType.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cubes::matrix {

/// What a matrix file says besides its elements. Files of other programs have no type and kind.
struct FileHeader {
    int rows = 0;
    int columns = 0;
    std::optional<RkMatrixType> type;
    std::optional<RkMatrixKind> kind;
    /// In UTF-8.
    std::string name;
    std::vector<std::int32_t> zones;
    /// Whether it is a selected-link matrix. Only compressed files keep this.
    bool selectedLink = false;
};

/// Throws std::length_error when a dimension is below 1 or the elements pass what can be addressed.
std::size_t elementCount(std::uint64_t rows, std::uint64_t columns);

}
