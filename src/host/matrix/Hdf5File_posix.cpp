#include "host/matrix/Hdf5.h"

namespace cubes::matrix::hdf5 {

Handle openFile(std::string const& path) {
    return Handle(H5Fopen(path.c_str(), H5F_ACC_RDONLY, fileAccess().get()), H5Fclose, "open it as HDF5");
}

}
