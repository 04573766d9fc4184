#include <cubes/matrix/TRkBaseMatrix.h>
#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

TRkBaseMatrix::~TRkBaseMatrix() = default;

TRkVLSelectedLinkMatrix::~TRkVLSelectedLinkMatrix() = default;
