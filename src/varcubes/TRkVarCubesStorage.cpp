#include <cubes/varcubes/TRkVarCubes.h>

#include <cubes/matrix/TRkMatrix.h>

#include <array>
#include <memory>
#include <span>

#include "catalogue/EntryKey.h"
#include "catalogue/MatrixReading.h"

namespace {

template <typename Meaning>
struct ForCube {
    RkCubeTypes cubeType;
    Meaning meaning;
};

// What an entry's matrix becomes once it is opened; in other cubes it keeps the kind it has.
constexpr ForCube<RkMatrixKind> openedKinds[] = {
    {ctStopToStop, mkStopToStop}, {ctPath, mkPath}, {ctTransit, mkTransit}, {ctScreenLine, mkScreenLine}};

// What a cube writes that was constructed with the type of four-key matrices; others keep it.
constexpr ForCube<RkMatrixType> writtenTypes[] = {
    {ctStopToStop, mtStopToStop}, {ctScreenLine, mtScreenLine}, {ctSelectedLink, mtSelectedLink}, {ctCordon, mtCordon}};

template <typename Meaning, std::size_t Count>
Meaning meaningFor(RkCubeTypes cubeType, ForCube<Meaning> const (&table)[Count], Meaning otherwise) {
    for (auto const& row : table)
        if (row.cubeType == cubeType) return row.meaning;
    return otherwise;
}

bool writesUnderLock(RkCubeTypes cubeType) {
    return cubeType == ctScreenLine || cubeType == ctSelectedLink;
}

// A matrix that works in place on this very file has nothing to save unless it was changed.
bool isSaved(TRkMatrix const& matrix, TRkFString const& target, RkLockState lock) {
    bool const inPlace = (lock & lsInPlace) && TRkFString(matrix.FileName()).IsSameFile(target);
    return inPlace && matrix.StateCode() != lsChanged;
}

}

bool TRkVarCubes::Set(
    short p, short m, short t, short u, short r, short i, TRkMatrix const& matrix, RkLockState lock, bool zeroBased) {
    // Numbers that a key or a file's name cannot hold end here, before anything is lost.
    if (MatrixFile(p, m, t, u, r, i, zeroBased).IsEmpty()) return false;
    MakeFilename(p, m, t, u, r, i);
    if (Check(p, m, t, u, r, i, zeroBased)) Clear(p, m, t, u, r, i, zeroBased);
    // Callers rely on what is added here: the key as it was handed in, with the flag as parent cube.
    short const parent = zeroBased ? 1 : 0;
    Add(p, m, t, u, r, i, parent, -1, -1, -1, -1, -1, -1, false);
    return SaveMatrix(matrix, p, m, t, u, r, i, lock, zeroBased);
}

TRkFString TRkVarCubes::MatrixFile(short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    auto const key = cubes::storedKey(std::array{CubeNumber(), p, m, t, u, r, i}, zeroBased);
    if (!key) return {};
    return TRkFString(TRkString(MatrixDirectory()) + cubes::fileStem(std::span(*key).subspan(1)) + extension_);
}

bool TRkVarCubes::SaveMatrix(
    TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) {
    TRkFString const target = MatrixFile(p, m, t, u, r, i, zeroBased);
    if (target.IsEmpty()) return false;
    matrix.Prepare();
    if (isSaved(matrix, target, lock)) return false;
    if (matrixType_ == mtMatrixCube) matrixType_ = meaningFor(cubeType_, writtenTypes, matrixType_);
    TRkMatrix file(matrix.Rows(), matrix.Columns(), matrixType_, target.c_str(), 1, "", "", matrixFlag_, matrixKind_,
        writesUnderLock(cubeType_) ? lsReadWrite : lock);
    if (!file.IsValid()) return false;
    file.AssignFrom(matrix);
    return file.IsValid();
}

TRkMatrix* TRkVarCubes::Get(
    short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) const {
    auto const key = cubes::storedKey(std::array{CubeNumber(), p, m, t, u, r, i}, zeroBased);
    if (!key) return nullptr;
    auto const& [cube, kp, km, kt, ku, kr, ki] = *key;
    if (!isCorrect(kp, km, kt, ku, kr, ki)) return nullptr;
    TRkString const file = FileName(kp, km, kt, ku, kr, ki, false);
    if (file.IsEmpty()) return nullptr;
    std::string const name = cubes::displayKey(std::span(*key).subspan(1));
    auto matrix = std::make_unique<TRkMatrix>(file.c_str(), 1, name.c_str(), true, matrixKind_, lock, 0);
    if (!matrix->IsValid()) return nullptr;
    matrix->MatrixKind(meaningFor(cubeType_, openedKinds, matrix->MatrixKind()));
    return matrix.release();
}

double TRkVarCubes::Get(
    short p, short m, short t, short u, short r, short i, int row, int column, RkLockState lock, bool zeroBased) const {
    return cubes::readElement(std::unique_ptr<TRkMatrix>(Get(p, m, t, u, r, i, lock, zeroBased)), row, column);
}

TRkMatrixHeader const* TRkVarCubes::GetHeader(
    short p, short m, short t, short u, short r, short i, bool zeroBased) const {
    return cubes::readHeader(FileName(p, m, t, u, r, i, zeroBased));
}
