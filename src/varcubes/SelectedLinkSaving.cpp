// Selected-link and screen-line cubes take a selected-link matrix that lives in a file as it is:
// its file is copied, so that it stays one and nothing is read or compressed again.

#include <cubes/varcubes/TRkScreenCube.h>
#include <cubes/varcubes/TRkSelectedLinkCube.h>

#include <cubes/matrix/TRkMatrix.h>
#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

#include "catalogue/MatrixPlacing.h"

namespace {

// Null for any other matrix.
TRkVLSelectedLinkMatrix const* selectedLinkFile(TRkMatrix const& matrix) {
    auto const* const body = dynamic_cast<TRkVLSelectedLinkMatrix const*>(matrix.Body());
    return body && *body->FileName() ? body : nullptr;
}

// False also onto the matrix's own file, which stays as it is.
bool copyFlushed(TRkVLSelectedLinkMatrix const& matrix, TRkFString const& target) {
    matrix.Flush();
    return cubes::copyMatrixFile(matrix.FileName(), target.str(), lsReadWrite);
}

}

bool TRkSelectedLinkCube::SaveMatrix(
    TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) {
    auto const* const links = selectedLinkFile(matrix);
    if (!links) return TRkVarCubes::SaveMatrix(matrix, p, m, t, u, r, i, lock, zeroBased);
    return copyFlushed(*links, MatrixFile(p, m, t, u, r, i, zeroBased));
}

bool TRkScreenCube::SaveMatrix(
    TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock, bool zeroBased) {
    auto const* const links = selectedLinkFile(matrix);
    if (!links) return TRkVarCubes::SaveMatrix(matrix, p, m, t, u, r, i, lock, zeroBased);
    return copyFlushed(*links, MatrixFile(p, m, t, u, r, i, zeroBased));
}
