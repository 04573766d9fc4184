#include "host/matrix/Samples.h"

#include "support/Process.h"

#include <gtest/gtest.h>

#include <cstring>

namespace cubes::test {

TRkMatrix numbered(int rows, int columns) {
    TRkMatrix matrix = TRkMatrix::inMemory(rows, columns);
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < columns; ++j) matrix.RowAt(i, 0)[j] = static_cast<float>(1000 * i + j);
    return matrix;
}

TRkMatrix times(int rows, int columns) {
    TRkMatrix matrix = TRkMatrix::inMemory(rows, columns);
    unsigned state = 1;
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < columns; ++j) {
            state = state * 1664525u + 1013904223u;
            matrix.RowAt(i, 0)[j] = 5.0f + static_cast<float>(state >> 20) / 64.0f;
        }
    return matrix;
}

TRkMatrix created(std::string const& file, int rows, int columns, int lock, char const* name) {
    return TRkMatrix(
        rows, columns, mtMatrixCube, file.c_str(), 1, name, "", true, mkDefault, static_cast<RkLockState>(lock));
}

TRkMatrix opened(std::string const& file, int lock, int kind, char const* name) {
    return TRkMatrix(file.c_str(), 1, name, true, static_cast<RkMatrixKind>(kind), static_cast<RkLockState>(lock), 0);
}

bool save(TRkMatrix const& matrix, std::string const& file, int lock) {
    TRkMatrix target = created(file, matrix.Rows(), matrix.Columns(), lock);
    if (target.IsValid()) target.AssignFrom(matrix);
    return target.IsValid();
}

void flipBit(std::string const& file, int row, int column) {
    auto const done = runPython(R"(
import h5py, numpy as np, sys
row, column = map(int, sys.argv[2:])
with h5py.File(sys.argv[1], 'r+') as f:
    d = f['data/matrix']
    bits = np.array([d[row, column]], '<f4').view('<u4')
    d[row, column] = (bits ^ 1).view('<f4')[0]
)",
        {file, std::to_string(row), std::to_string(column)});
    EXPECT_EQ(done.exitCode, 0) << done.errors;
}

std::string difference(TRkMatrix const& first, TRkMatrix const& second) {
    if (!first.IsValid()) return first.Reason();
    if (!second.IsValid()) return second.Reason();
    if (first.Rows() != second.Rows() || first.Columns() != second.Columns()) return "dimensions";
    for (int i = 0; i < first.Rows(); ++i) {
        float const* const a = first.RowAt(i, 8);
        float const* const b = second.RowAt(i, 8);
        if (std::memcmp(a, b, static_cast<std::size_t>(first.Columns()) * sizeof(float)) != 0)
            return "row " + std::to_string(i);
    }
    return {};
}

}
