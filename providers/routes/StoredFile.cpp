#include "StoredFile.h"

#include "Numbers.h"
#include "host/platform/Files.h"
#include "host/platform/TemporaryFile.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

namespace cubes::routes {

using hdf5::check;
using hdf5::Handle;
using hdf5::IndexRecord;

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::int32_t version = 1;
constexpr std::int32_t noCube = 0;
constexpr Key noKey = {-1, -1, -1, -1, -1, -1};

constexpr std::size_t growth = std::size_t{1} << 20;
// Files in memory are distinguished by their names; ours exist one at a time.
constexpr char const* memoryName = "route file in memory";

// HDF5 lets the application own the memory of a file. (HDF5's own copy of a file in memory has a wrong checksum in this
// version of the format.)

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
    Handle access = hdf5::fileAccess();
    check(H5Pset_fclose_degree(access.get(), H5F_CLOSE_STRONG), action);
    // The oldest format whose structure has checksums throughout.
    check(H5Pset_libver_bounds(access.get(), H5F_LIBVER_V110, H5F_LIBVER_V110), action);
    // The index record is searched at multiples of 8.
    check(H5Pset_alignment(access.get(), hdf5::IndexRecord::bytes, 8), action);
    check(H5Pset_fapl_core(access.get(), growth, false), action);
    H5FD_file_image_callbacks_t callbacks{allocate, copyMemory, reallocate, releaseMemory, sameData, keepData, &bytes};
    check(H5Pset_file_image_callbacks(access.get(), &callbacks), action);
    return access;
}

Handle createIn(Bytes& bytes) {
    Handle const access = accessTo(bytes);
    Handle const properties = hdf5::untimedProperties(H5P_FILE_CREATE);
    return Handle(
        H5Fcreate(memoryName, H5F_ACC_TRUNC, properties.get(), access.get()), H5Fclose, "create a file in memory");
}

Handle openIn(Bytes& bytes, Bytes existing) {
    Handle const access = accessTo(bytes);
    check(H5Pset_file_image(access.get(), existing.data(), existing.size()), "read the file into memory");
    return hdf5::openedFile(H5Fopen(memoryName, H5F_ACC_RDWR, access.get()));
}

// A file that is created or changed in memory, so that HDF5 never writes to a full disk.
class MemoryFile {
public:
    MemoryFile() : file_(createIn(bytes_)) {}
    /// With the bytes of an existing file.
    explicit MemoryFile(Bytes existing) : file_(openIn(bytes_, std::move(existing))) {}
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;

    hid_t get() const noexcept { return file_.get(); }
    /// Closes the file and returns its bytes.
    Bytes finish();

private:
    // Outlives the file, which stores its bytes here.
    Bytes bytes_;
    Handle file_;
};

Bytes MemoryFile::finish() {
    check(H5Fflush(file_.get(), H5F_SCOPE_GLOBAL), "complete the file in memory");
    ssize_t const size = check(H5Fget_file_image(file_.get(), nullptr, 0), "measure the file in memory");
    file_.close("complete the file in memory");
    bytes_.resize(static_cast<std::size_t>(size));
    return std::move(bytes_);
}

void writeRecord(hid_t file, IndexRecord const& record) {
    auto const bytes = hdf5::encode(record);
    hsize_t const size = bytes.size();
    Handle const space(H5Screate_simple(1, &size, nullptr), H5Sclose, "describe the index record");
    Handle const properties = hdf5::untimedProperties(H5P_DATASET_CREATE);
    check(H5Pset_alloc_time(properties.get(), H5D_ALLOC_TIME_EARLY), "place the index record");
    Handle const dataset(
        H5Dcreate2(file, IndexRecord::dataset, H5T_STD_U8LE, space.get(), H5P_DEFAULT, properties.get(), H5P_DEFAULT),
        H5Dclose, "create the index record");
    check(H5Dwrite(dataset.get(), H5T_STD_U8LE, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()), "write the index record");
}

// The size is known only when the file is complete.
void writeSizeIntoRecord(Bytes& file) {
    auto found = hdf5::findRecord(file);
    if (!found) return;
    found->record.fileSize = file.size();
    std::ranges::copy(hdf5::encode(found->record), file.begin() + static_cast<std::ptrdiff_t>(found->offset));
}

void writeStamp(hid_t file, Stamp const& stamp) {
    std::int32_t const cubeType = stamp.cubeType.value_or(noCube);
    Key const key = stamp.key.value_or(noKey);
    writeAttribute(file, "cube_type", typeOf<std::int32_t>(), &cubeType, 1);
    writeAttribute(file, "key", typeOf<std::int16_t>(), key.data(), key.size());
}

Stamp readStamp(hid_t file) {
    std::int32_t cubeType = 0;
    Key key{};
    readAttribute(file, "cube_type", typeOf<std::int32_t>(), &cubeType, 1);
    readAttribute(file, "key", typeOf<std::int16_t>(), key.data(), key.size());
    return {cubeType, key};
}

void requireKind(hid_t file, FileKind kind) {
    std::string const found = H5Aexists(file, "format") > 0 ? textAttribute(file, "format") : "something else";
    if (found != kind.format) throw std::runtime_error("it holds " + found + ", not " + std::string(kind.format));
    std::int32_t number = 0;
    readAttribute(file, "version", typeOf<std::int32_t>(), &number, 1);
    if (number != version) throw std::runtime_error("its version " + std::to_string(number) + " is unknown");
}

platform::File openContent(std::string const& path) {
    auto file = platform::File::openForReading(path);
    if (file.size() == 0) throw std::runtime_error("it is empty");
    return file;
}

Bytes bytesOf(std::string const& path) {
    platform::File const file = openContent(path);
    Bytes bytes(static_cast<std::size_t>(file.size()));
    file.readAt(0, bytes);
    return bytes;
}

void commit(std::string const& path, Bytes bytes) {
    writeSizeIntoRecord(bytes);
    platform::TemporaryFile file(path);
    file.file().writeAt(0, bytes);
    file.commit();
}

}

void readStoredFile(std::string const& path, FileKind kind, std::function<void(hid_t, FileRoot const&)> const& read) {
    platform::File content = openContent(path);
    auto const found = hdf5::findRecord(content);
    hdf5::Session const session;
    Handle const file = hdf5::openFile(std::move(content));
    requireKind(file.get(), kind);
    bool const isRecorded = found && hdf5::hasRecordAt(file.get(), found->offset);
    read(file.get(), {readStamp(file.get()), isRecorded ? found->record : IndexRecord{}});
}

void writeStoredFile(
    std::string const& path, FileKind kind, FileRoot const& root, std::function<void(hid_t)> const& write) {
    auto const made = [&] {
        hdf5::Session const session;
        MemoryFile file;
        IndexRecord record = root.record;
        record.holds = kind.holds;
        writeRecord(file.get(), record);
        hdf5::writeText(file.get(), "format", std::string(kind.format));
        writeAttribute(file.get(), "version", typeOf<std::int32_t>(), &version, 1);
        writeStamp(file.get(), root.stamp);
        write(file.get());
        return file.finish();
    };
    commit(path, made());
}

void restampStoredFile(std::string const& path, Stamp const& stamp) {
    auto const stamped = [&] {
        hdf5::Session const session;
        MemoryFile file(bytesOf(path));
        writeStamp(file.get(), stamp);
        return file.finish();
    };
    commit(path, stamped());
}

}
