#include "catalogue/MatrixReading.h"

#include <cubes/matrix/TRkMatrix.h>
#include <cubes/matrix/TRkMatrixException.h>

#include "host/matrix/WriteLock.h"
#include "host/platform/Files.h"
#include "host/platform/MoveFile.h"

#include <optional>
#include <stdexcept>
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

bool copyMatrixFile(std::string const& source, std::string const& target, RkLockState lock) {
    if (platform::overlap(source, target)) return false;
    try {
        std::optional<matrix::WriteLock> held;
        if (lock & lsWrite) held.emplace(target, matrix::WriteLock::Purpose::create);
        return platform::copyFile(source, target);
    } catch (std::runtime_error const&) {
        return false;
    }
}

bool moveMatrixFile(std::string const& source, std::string const& target) {
    if (!platform::exists(source) || platform::overlap(source, target)) return false;
    try {
        matrix::WriteLock const held(target, matrix::WriteLock::Purpose::create);
        platform::removeFile(target);
        return platform::moveFile(source, target);
    } catch (std::runtime_error const&) {
        return false;
    }
}

}
