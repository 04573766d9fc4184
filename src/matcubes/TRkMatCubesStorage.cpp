#include <cubes/matcubes/TRkMatCubes.h>

#include <cubes/matrix/TRkMatrix.h>

#include <array>
#include <memory>
#include <span>

#include "catalogue/EntryKey.h"
#include "catalogue/MatrixPlacing.h"
#include "catalogue/MatrixReading.h"

namespace {

// Kinds above this one belong to the matrix itself and outlive its saving.
constexpr unsigned lastCubeKind = 31;

}

bool TRkMatCubes::Check(short cubenr) const {
    return TRkBaseCubes::Check(cubenr);
}

bool TRkMatCubes::Check(char const* cubeName) const {
    return TRkBaseCubes::Check(cubeName);
}

bool TRkMatCubes::Check(short cubenr, short p, short m, short t, short u, bool zeroBased) const {
    auto table = Open();
    bool const found = LookUp(table, cubenr, p, m, t, u, zeroBased);
    Close(table);
    return found;
}

bool TRkMatCubes::Check(char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return Check(CubeNameToNr(cubeName), p, m, t, u, zeroBased);
}

TRkMatrix* TRkMatCubes::Get(short cubenr, short p, short m, short t, short u, RkLockState lock, bool zeroBased) const {
    TRkString const file = FileName(cubenr, p, m, t, u, zeroBased);
    if (file.IsEmpty()) return nullptr;
    auto const key = cubes::storedKey(std::array{cubenr, p, m, t, u}, zeroBased);
    TRkString const name = CubeNrToName(cubenr) + " " + cubes::displayKey(std::span(*key).subspan(1));
    auto matrix = std::make_unique<TRkMatrix>(file.c_str(), 1, name.c_str(), true, mkDefault, lock, 0);
    return matrix->IsValid() ? matrix.release() : nullptr;
}

TRkMatrix* TRkMatCubes::Get(
    char const* cubeName, short p, short m, short t, short u, RkLockState lock, bool zeroBased) const {
    return Get(CubeNameToNr(cubeName), p, m, t, u, lock, zeroBased);
}

double TRkMatCubes::Get(
    short cubenr, short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const {
    return cubes::readElement(std::unique_ptr<TRkMatrix>(Get(cubenr, p, m, t, u, lock, zeroBased)), i, j);
}

double TRkMatCubes::Get(
    char const* cubeName, short p, short m, short t, short u, int i, int j, RkLockState lock, bool zeroBased) const {
    return Get(CubeNameToNr(cubeName), p, m, t, u, i, j, lock, zeroBased);
}

TRkMatrixHeader const* TRkMatCubes::GetHeader(
    char const* cubeName, short p, short m, short t, short u, bool zeroBased) const {
    return cubes::readHeader(FileName(cubeName, p, m, t, u, zeroBased));
}

bool TRkMatCubes::Set(
    short cubenr, short p, short m, short t, short u, TRkMatrix const& matrix, RkLockState lock, bool zeroBased) {
    return Check(cubenr, p, m, t, u, zeroBased) && SaveMatrix(matrix, cubenr, p, m, t, u, lock, zeroBased);
}

bool TRkMatCubes::Set(char const* cubeName, short p, short m, short t, short u, TRkMatrix const& matrix,
    RkLockState lock, bool zeroBased) {
    if (Check(cubeName, p, m, t, u, zeroBased)) {
        // A number that the file's name cannot hold throws here, before anything is lost.
        cubes::fileStem(*cubes::storedKey(std::array{CubeNameToNr(cubeName), p, m, t, u}, zeroBased));
        Clear(cubeName, p, m, t, u, zeroBased);
    }
    if (!Add(cubeName, p, m, t, u, zeroBased)) return false;
    short const cubenr = CubeNameToNr(cubeName);
    return cubenr != 0 && SaveMatrix(matrix, cubenr, p, m, t, u, lock, zeroBased);
}

bool TRkMatCubes::SaveMatrix(
    TRkMatrix const& matrix, short cubenr, short p, short m, short t, short u, RkLockState lock, bool zeroBased) {
    auto const key = cubes::storedKey(std::array{cubenr, p, m, t, u}, zeroBased);
    if (!key) return false;
    TRkFString const target(TRkString(matrixDirectory_) + cubes::fileStem(*key) + extension_);
    matrix.Prepare();
    TRkFString const source(matrix.FileName());
    if (source.IsSameFile(target) && matrix.StateCode() != lsChanged) return false;
    if (matrix.StateCode() == lsUnchanged && source.Exists()) {
        // The file is as good as the matrix. False although it was written: the result is fixed so.
        cubes::copyMatrixFile(source.str(), target.str(), lock);
        return false;
    }
    unsigned const sourceKind = matrix.Header().Kind();
    RkMatrixKind const kind = sourceKind > lastCubeKind ? static_cast<RkMatrixKind>(sourceKind) : matrixKind_;
    TRkMatrix file(matrix.Rows(), matrix.Columns(), matrixType_, target.c_str(), 1, "", "", matrixFlag_, kind, lock);
    if (!file.IsValid()) return false;
    file.AssignFrom(matrix);
    return file.IsValid();
}
