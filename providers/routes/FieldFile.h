#pragma once

#include "FieldTable.h"
#include "Hdf5.h"

/// How route data lie in a file: see docs/route-file.md.
namespace cubes::routes {

constexpr char const* fieldFileKind = "cubes route data";

void writeFields(hid_t file, FieldTable const& table);
/// Throws when the file does not hold what it should.
FieldTable readFields(hid_t file);

}
