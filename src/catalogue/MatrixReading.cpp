#include "catalogue/MatrixReading.h"

#include <cubes/matrix/TRkMatrix.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <string>

namespace cubes {

namespace {

constexpr int rowAccess = 8;

void requireColumn(TRkMatrix const& matrix, int column) {
    if (column >= 0 && column < matrix.Columns()) return;
    throw TRkMatrixException("cannot read column " + std::to_string(column) + " of " + matrix.FileName() + ": it has " +
                                 std::to_string(matrix.Columns()) + " columns",
        matrix.FileName());
}

}

double readElement(std::unique_ptr<TRkMatrix> matrix, int row, int column) {
    if (!matrix) return -1.0;
    requireColumn(*matrix, column);
    double const element = matrix->RowAt(row, rowAccess)[column];
    matrix.release()->Release();
    return element;
}

TRkMatrixHeader const* readHeader(TRkString const& file) {
    return file.IsEmpty() ? nullptr : TRkMatrix().GetHeader(file.c_str());
}

}
