#pragma once

#include "host/hdf5/Hdf5.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cubes::matrix {

/// The names of the datasets with so many dimensions in a group of a file, in order of name; none
/// when there is no such group. REQUIRES: within a Session.
std::vector<std::string> datasetsOf(hid_t file, char const* group, int dimensions);

/// The zone numbers that the file has for so many rows: those of a lookup with a usual name, else
/// of the only lookup. None unless they are distinct whole numbers. REQUIRES: within a Session.
std::vector<std::int32_t> readZones(hid_t file, hsize_t rows);

}
