#include <cubes/matrix/TRkMatrixHeader.h>

TRkMatrixHeader::TRkMatrixHeader(int rows, int columns, RkMatrixType type, RkMatrixKind kind)
    : rows_(rows), columns_(columns), type_(type), kind_(kind) {}
