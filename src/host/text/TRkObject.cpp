#include <cubes/text/TRkObject.h>

// Out of line so that the class has one home: down-casts work across library borders.
TRkObject::~TRkObject() = default;
