#include "host/hdf5/MemoryFile.h"

#include "host/hdf5/IndexRecord.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <utility>

namespace cubes::hdf5 {

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t growth = std::size_t{1} << 20;
// Files in memory are distinguished by their names; there is one at a time.
constexpr char const* memoryName = "file in memory";

// HDF5 lets the application own the memory of a file. (HDF5's own copy of a file in memory has a
// wrong checksum in this version of the format.)

void* resized(Bytes& bytes, std::size_t size) noexcept {
    try {
        bytes.resize(size);
        return bytes.data();
    } catch (std::exception const&) {
        return nullptr;
    }
}

void* allocate(std::size_t size, H5FD_file_image_op_t reason, void* bytes) {
    return reason == H5FD_FILE_IMAGE_OP_FILE_OPEN ? resized(*static_cast<Bytes*>(bytes), size) : std::malloc(size);
}

void* copyMemory(void* to, void const* from, std::size_t size, H5FD_file_image_op_t, void*) {
    return std::memcpy(to, from, size);
}

void* reallocate(void* memory, std::size_t size, H5FD_file_image_op_t reason, void* bytes) {
    bool const isFile = reason == H5FD_FILE_IMAGE_OP_FILE_RESIZE;
    return isFile ? resized(*static_cast<Bytes*>(bytes), size) : std::realloc(memory, size);
}

herr_t releaseMemory(void* memory, H5FD_file_image_op_t, void* bytes) {
    if (memory != static_cast<Bytes*>(bytes)->data()) std::free(memory);
    return 0;
}

void* sameData(void* bytes) {
    return bytes;
}

herr_t keepData(void*) {
    return 0;
}

Handle accessTo(Bytes& bytes) {
    char const* const action = "prepare a file in memory";
    Handle access = fileAccess();
    check(H5Pset_fclose_degree(access.get(), H5F_CLOSE_STRONG), action);
    // The oldest format whose structure has checksums throughout.
    check(H5Pset_libver_bounds(access.get(), H5F_LIBVER_V110, H5F_LIBVER_V110), action);
    // The index record is searched at multiples of 8.
    check(H5Pset_alignment(access.get(), IndexRecord::bytes, 8), action);
    check(H5Pset_fapl_core(access.get(), growth, false), action);
    H5FD_file_image_callbacks_t callbacks{allocate, copyMemory, reallocate, releaseMemory, sameData, keepData, &bytes};
    check(H5Pset_file_image_callbacks(access.get(), &callbacks), action);
    return access;
}

Handle createIn(Bytes& bytes) {
    Handle const access = accessTo(bytes);
    Handle const properties = untimedProperties(H5P_FILE_CREATE);
    return Handle(
        H5Fcreate(memoryName, H5F_ACC_TRUNC, properties.get(), access.get()), H5Fclose, "create a file in memory");
}

}

MemoryFile::MemoryFile() : file_(createIn(bytes_)) {}

std::vector<std::byte> MemoryFile::finish() {
    check(H5Fflush(file_.get(), H5F_SCOPE_GLOBAL), "complete the file in memory");
    ssize_t const size = check(H5Fget_file_image(file_.get(), nullptr, 0), "measure the file in memory");
    file_.close("complete the file in memory");
    bytes_.resize(static_cast<std::size_t>(size));
    return std::move(bytes_);
}

}
