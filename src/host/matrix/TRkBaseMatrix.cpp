#include <cubes/matrix/TRkBaseMatrix.h>

TRkBaseMatrix::~TRkBaseMatrix() = default;
