#include "Hdf5Memory.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <utility>

namespace cubes::routes::hdf5 {

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t growth = std::size_t{1} << 20;
// Files in memory are told apart by their names; ours live one at a time.
constexpr char const* memoryName = "route file in memory";

// HDF5 lets the application hold the memory of a file. (Its own way to copy a file out of memory
// leaves a wrong checksum in this version of the format.)

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

void* copy(void* to, void const* from, std::size_t size, H5FD_file_image_op_t, void*) {
    return std::memcpy(to, from, size);
}

void* reallocate(void* memory, std::size_t size, H5FD_file_image_op_t reason, void* bytes) {
    bool const isFile = reason == H5FD_FILE_IMAGE_OP_FILE_RESIZE;
    return isFile ? resized(*static_cast<Bytes*>(bytes), size) : std::realloc(memory, size);
}

herr_t release(void* memory, H5FD_file_image_op_t, void* bytes) {
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
    check(H5Pset_fapl_core(access.get(), growth, false), action);
    H5FD_file_image_callbacks_t callbacks{allocate, copy, reallocate, release, sameData, keepData, &bytes};
    check(H5Pset_file_image_callbacks(access.get(), &callbacks), action);
    return access;
}

Handle createIn(Bytes& bytes) {
    Handle const access = accessTo(bytes);
    Handle const properties = untimedProperties(H5P_FILE_CREATE);
    return Handle(
        H5Fcreate(memoryName, H5F_ACC_TRUNC, properties.get(), access.get()), H5Fclose, "make a file in memory");
}

Handle openIn(Bytes& bytes, Bytes existing) {
    Handle const access = accessTo(bytes);
    check(H5Pset_file_image(access.get(), existing.data(), existing.size()), "take the file into memory");
    return Handle(H5Fopen(memoryName, H5F_ACC_RDWR, access.get()), H5Fclose, "open it as HDF5");
}

}

MemoryFile::MemoryFile() : file_(createIn(bytes_)) {}

MemoryFile::MemoryFile(Bytes existing) : file_(openIn(bytes_, std::move(existing))) {}

Bytes MemoryFile::finish() {
    check(H5Fflush(file_.get(), H5F_SCOPE_GLOBAL), "complete the file in memory");
    ssize_t const size = check(H5Fget_file_image(file_.get(), nullptr, 0), "measure the file in memory");
    file_.close("complete the file in memory");
    bytes_.resize(static_cast<std::size_t>(size));
    return std::move(bytes_);
}

}
