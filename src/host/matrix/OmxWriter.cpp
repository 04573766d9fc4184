#include "host/matrix/OmxWriter.h"

#include "host/matrix/OmxReader.h"

#include <algorithm>
#include <array>

namespace cubes::matrix {

using hdf5::check;
using hdf5::createGroup;
using hdf5::Handle;
using hdf5::untimedProperties;
using hdf5::writeText;

namespace {

constexpr hsize_t page = 4096;
// Together they fit into the first two pages, before the elements.
constexpr hsize_t structureBytes = 6000;
constexpr hsize_t smallDataBytes = 2048;

Handle scalar() {
    return Handle(H5Screate(H5S_SCALAR), H5Sclose, "prepare an attribute");
}

Handle simple(std::span<hsize_t const> sizes) {
    return Handle(
        H5Screate_simple(static_cast<int>(sizes.size()), sizes.data(), nullptr), H5Sclose, "prepare dimensions");
}

void writeAttribute(hid_t object, char const* name, hid_t fileType, hid_t memoryType, hid_t space, void const* value) {
    Handle const attribute(
        H5Acreate2(object, name, fileType, space, H5P_DEFAULT, H5P_DEFAULT), H5Aclose, "create an attribute");
    check(H5Awrite(attribute.get(), memoryType, value), "write an attribute");
}

void writeNumber(hid_t object, char const* name, std::int32_t number) {
    writeAttribute(object, name, H5T_STD_I32LE, H5T_NATIVE_INT32, scalar().get(), &number);
}

// The attributes that PyTables, and tools based on it, require to list a dataset.
void markForPyTables(hid_t dataset, char const* kind, char const* version) {
    writeText(dataset, "CLASS", kind);
    writeText(dataset, "VERSION", version);
    writeText(dataset, "TITLE", "");
}

Handle accessFor(Filters filters) {
    hdf5::Session const session;
    Handle access = hdf5::fileAccess();
    // The format of HDF5 1.8: the oldest whose structure has checksums.
    check(H5Pset_libver_bounds(access.get(), H5F_LIBVER_V18, H5F_LIBVER_V18), "choose the format");
    // Filtered chunks follow each other, so that only structure is between them.
    if (filters == Filters::none) check(H5Pset_alignment(access.get(), page, page), "align the elements");
    check(H5Pset_meta_block_size(access.get(), structureBytes), "prepare the structure");
    check(H5Pset_small_data_block_size(access.get(), smallDataBytes), "prepare the structure");
    return access;
}

void setFilters(hid_t properties, Filters filters) {
    if (filters == Filters::none) {
        check(H5Pset_alloc_time(properties, H5D_ALLOC_TIME_EARLY), "place the elements");
        check(H5Pset_fill_time(properties, H5D_FILL_TIME_NEVER), "place the elements");
        return;
    }
    if (filters == Filters::shuffleAndDeflate) check(H5Pset_shuffle(properties), "set a filter");
    check(H5Pset_deflate(properties, 1), "set a filter");
}

Handle createDataset(hid_t parent, std::string const& name, hid_t type, hid_t space, hid_t properties) {
    return Handle(H5Dcreate2(parent, name.c_str(), type, space, H5P_DEFAULT, properties, H5P_DEFAULT), H5Dclose,
        "create a dataset");
}

}

OmxWriter::OmxWriter(platform::File& file, MatrixContent const& content, ChunkLayout layout)
    : file_(file, accessFor(layout.filters)) {
    hdf5::Session const session;
    FileHeader const& header = content.header;
    recordOffset_ = hdf5::writeRecord(file_.get(), {});
    writeText(file_.get(), omx::version, "0.2", hdf5::Encoding::ascii);
    std::array<hsize_t, 1> const two = {2};
    std::array<std::int32_t, 2> const shape = {header.rows, header.columns};
    writeAttribute(file_.get(), omx::shape, H5T_STD_I32LE, H5T_NATIVE_INT32, simple(two).get(), shape.data());
    hdf5::writeProvenance(file_.get(), content.provenance);
    createTable(content.table, header, layout);
    writeZones(header.zones);
    file_.requireWritten();
}

void OmxWriter::createTable(std::string const& table, FileHeader const& header, ChunkLayout layout) {
    Handle const group = createGroup(file_.get(), omx::tables);
    auto const columns = static_cast<hsize_t>(header.columns);
    std::array<hsize_t, 2> const size = {static_cast<hsize_t>(header.rows), columns};
    std::array<hsize_t, 2> const chunk = {static_cast<hsize_t>(layout.rows), columns};
    Handle const properties = untimedProperties(H5P_DATASET_CREATE);
    check(H5Pset_chunk(properties.get(), 2, chunk.data()), "set the chunk size");
    setFilters(properties.get(), layout.filters);
    table_ = createDataset(group.get(), table, H5T_IEEE_F32LE, simple(size).get(), properties.get());
    markForPyTables(table_.get(), "CARRAY", "1.1");
    writeNumber(table_.get(), omx::type, header.type.value_or(mtMatrixCube));
    writeNumber(table_.get(), omx::kind, header.kind.value_or(mkDefault));
    if (header.selectedLink) writeNumber(table_.get(), omx::selectedLink, 1);
    if (!header.name.empty()) writeText(table_.get(), omx::name, header.name);
}

void OmxWriter::writeZones(std::vector<std::int32_t> const& zones) {
    Handle const group = createGroup(file_.get(), omx::lookups);
    if (zones.empty()) return;
    std::array<hsize_t, 1> const size = {zones.size()};
    Handle const dataset = createDataset(
        group.get(), omx::zones, H5T_STD_I32LE, simple(size).get(), untimedProperties(H5P_DATASET_CREATE).get());
    check(H5Dwrite(dataset.get(), H5T_NATIVE_INT32, H5S_ALL, H5S_ALL, H5P_DEFAULT, zones.data()), "write the zones");
    markForPyTables(dataset.get(), "ARRAY", "2.4");
    zonesOffset_ = H5Dget_offset(dataset.get());
}

ChunkPlace OmxWriter::chunkPlace(int firstRow) const {
    hdf5::Session const session;
    std::array<hsize_t, 2> const start = {static_cast<hsize_t>(firstRow), 0};
    unsigned skipped = 0;
    haddr_t address = HADDR_UNDEF;
    hsize_t size = 0;
    check(
        H5Dget_chunk_info_by_coord(table_.get(), start.data(), &skipped, &address, &size), "find the place of a chunk");
    if (address == HADDR_UNDEF) return {};
    return {address, size, skipped};
}

void OmxWriter::writeChunk(int firstRow, std::span<std::byte const> bytes) {
    hdf5::Session const session;
    std::array<hsize_t, 2> const start = {static_cast<hsize_t>(firstRow), 0};
    check(H5Dwrite_chunk(table_.get(), H5P_DEFAULT, 0, start.data(), bytes.size(), bytes.data()), "write a chunk");
    file_.requireWritten();
}

std::uint64_t OmxWriter::writeChunkTable(std::vector<ChunkPlace> const& chunks) {
    hdf5::Session const session;
    return hdf5::writeBytes(file_.get(), omx::chunks, std::as_bytes(std::span(chunks)));
}

void OmxWriter::finish(hdf5::Id128 const& content) {
    hdf5::Session const session;
    writeText(table_.get(), omx::content, content.text(), hdf5::Encoding::ascii);
    table_.close("finish the table");
    file_.finish();
}

}
