#pragma once

#include "host/hdf5/Hdf5.h"
#include "host/platform/File.h"

namespace cubes::reader {

/// Opens a file for reading through `file`: errors have the system's messages, and closing it closes everything opened
/// in it. Throws std::runtime_error: "it is not an HDF5 file". REQUIRES: within a Session.
hdf5::Handle openFile(platform::File file);

}
