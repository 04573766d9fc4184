#pragma once

#include <cubes/Export.h>
#include <cubes/matrix/RkMatrixKind.h>
#include <cubes/matrix/RkMatrixType.h>
#include <cubes/text/TRkString.h>

#include <cstdint>
#include <vector>

/// The description of a matrix without its elements. A value.
class CUBES_API TRkMatrixHeader {
public:
    TRkMatrixHeader() = default;
    TRkMatrixHeader(int rows, int columns, RkMatrixType type, RkMatrixKind kind);

    /// The kind as an unsigned number: saving a matrix compares it with 31.
    unsigned Kind() const noexcept { return static_cast<unsigned>(kind_); }
    RkMatrixType Type() const noexcept { return type_; }
    /// Number of origins.
    int Rows() const noexcept { return rows_; }
    /// Number of destinations.
    int Columns() const noexcept { return columns_; }
    /// The display name; empty when there is none.
    TRkString const& Name() const noexcept { return name_; }
    /// The zone number of each row and column, in order; empty when not known.
    std::vector<std::int32_t> const& Zones() const noexcept { return zones_; }

private:
    friend class TRkMatrix;
    int rows_ = 0;
    int columns_ = 0;
    RkMatrixType type_ = mtMatrixCube;
    RkMatrixKind kind_ = mkDefault;
    TRkString name_;
    std::vector<std::int32_t> zones_;
};
