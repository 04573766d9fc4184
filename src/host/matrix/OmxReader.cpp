#include "host/matrix/OmxReader.h"

#include "host/matrix/BlockCodec.h"
#include "host/matrix/OmxLookups.h"
#include "host/matrix/OmxNames.h"
#include "host/platform/Parallel.h"

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

namespace cubes::matrix {

using hdf5::check;
using hdf5::Handle;

namespace {

constexpr std::size_t largestNumber = 16;
// Deflate makes nothing smaller than about a thousandth.
constexpr std::size_t mostInflation = 1024;
constexpr std::size_t alwaysFits = std::size_t{1} << 26;

template <typename Number>
std::optional<Number> readNumber(hid_t object, char const* name, hid_t type) {
    if (H5Aexists(object, name) <= 0) return std::nullopt;
    Handle const attribute(H5Aopen(object, name, H5P_DEFAULT), H5Aclose, "open an attribute");
    Handle const space(H5Aget_space(attribute.get()), H5Sclose, "open an attribute");
    if (H5Sget_simple_extent_npoints(space.get()) != 1) return std::nullopt;
    Number number{};
    if (H5Aread(attribute.get(), type, &number) < 0) return std::nullopt;
    return number;
}

// Texts of fixed length, as we write them.
std::string readText(hid_t object, char const* name) {
    if (H5Aexists(object, name) <= 0) return {};
    Handle const attribute(H5Aopen(object, name, H5P_DEFAULT), H5Aclose, "open an attribute");
    Handle const type(H5Aget_type(attribute.get()), H5Tclose, "open an attribute");
    Handle const space(H5Aget_space(attribute.get()), H5Sclose, "open an attribute");
    bool const isText = H5Tget_class(type.get()) == H5T_STRING && H5Tis_variable_str(type.get()) == 0;
    if (!isText || H5Sget_simple_extent_npoints(space.get()) != 1) return {};
    std::string text(H5Tget_size(type.get()), '\0');
    if (H5Aread(attribute.get(), type.get(), text.data()) < 0) return {};
    return text.substr(0, text.find('\0'));
}

std::array<hsize_t, 2> sizeOf(hid_t dataset) {
    std::array<hsize_t, 2> size{};
    Handle const space(H5Dget_space(dataset), H5Sclose, "read the dimensions");
    if (H5Sget_simple_extent_ndims(space.get()) != 2) throw std::runtime_error("the table is not two-dimensional");
    check(H5Sget_simple_extent_dims(space.get(), size.data(), nullptr), "read the dimensions");
    return size;
}

void requireNumbers(hid_t dataset) {
    Handle const type(H5Dget_type(dataset), H5Tclose, "read the type of the elements");
    H5T_class_t const kind = H5Tget_class(type.get());
    // HDF5 itself trusts the size that a damaged file gives an element.
    if ((kind != H5T_INTEGER && kind != H5T_FLOAT) || H5Tget_size(type.get()) > largestNumber)
        throw std::runtime_error("the table's elements are not numbers");
}

// Only a table of ours may be large and all but empty: elsewhere that is a sign of damage, and
// reading it would take very long.
void requireStorage(hid_t file, hid_t dataset, std::size_t elements) {
    hsize_t size = 0;
    check(H5Fget_filesize(file, &size), "read the size of the file");
    bool const isOurs = H5Aexists(dataset, omx::checksum) > 0;
    bool const fits = elements / mostInflation <= size || elements <= alwaysFits || isOurs;
    if (H5Dget_storage_size(dataset) > size || !fits) throw std::runtime_error("the table is larger than the file");
}

bool fillsWithZero(hid_t properties) {
    H5D_fill_value_t state = H5D_FILL_VALUE_UNDEFINED;
    check(H5Pfill_value_defined(properties, &state), "read the layout");
    return state == H5D_FILL_VALUE_DEFAULT;
}

std::vector<H5Z_filter_t> filtersOf(hid_t properties) {
    std::vector<H5Z_filter_t> filters;
    int const count = check(H5Pget_nfilters(properties), "read the layout");
    for (int i = 0; i < count; ++i) {
        unsigned flags = 0;
        std::size_t values = 0;
        filters.push_back(
            H5Pget_filter2(properties, static_cast<unsigned>(i), &flags, &values, nullptr, 0, nullptr, nullptr));
    }
    return filters;
}

void requireFilters(std::vector<H5Z_filter_t> const& filters) {
    for (H5Z_filter_t const filter : filters)
        if (H5Zfilter_avail(filter) <= 0)
            throw std::runtime_error(
                "its elements are stored with filter " + std::to_string(filter) + ", which is not available here");
}

bool isSinglePrecision(hid_t dataset) {
    Handle const type(H5Dget_type(dataset), H5Tclose, "read the type of the elements");
    return H5Tequal(type.get(), H5T_IEEE_F32LE) > 0;
}

}

OmxTable::OmxTable(Handle file, Handle dataset) : file_(std::move(file)), dataset_(std::move(dataset)) {
    hid_t const id = dataset_.get();
    requireNumbers(id);
    auto const size = sizeOf(id);
    requireStorage(file_.get(), id, elementCount(size[0], size[1]));
    header_.rows = static_cast<int>(size[0]);
    header_.columns = static_cast<int>(size[1]);
    if (auto const type = readNumber<std::int32_t>(id, omx::type, H5T_NATIVE_INT32))
        header_.type = static_cast<RkMatrixType>(*type);
    if (auto const kind = readNumber<std::int32_t>(id, omx::kind, H5T_NATIVE_INT32))
        header_.kind = static_cast<RkMatrixKind>(*kind);
    header_.name = readText(id, omx::name);
    header_.selectedLink = readNumber<std::int32_t>(id, omx::selectedLink, H5T_NATIVE_INT32).value_or(0) != 0;
    if (size[0] == size[1]) header_.zones = readZones(file_.get(), size[0]);
    readLayout();
}

void OmxTable::readLayout() {
    Handle const properties(H5Dget_create_plist(dataset_.get()), H5Pclose, "read the layout");
    if (H5Pget_layout(properties.get()) != H5D_CHUNKED) return;
    std::array<hsize_t, 2> chunk{};
    check(H5Pget_chunk(properties.get(), 2, chunk.data()), "read the layout");
    bandRows_ = static_cast<int>(std::clamp<hsize_t>(chunk[0], 1, static_cast<hsize_t>(header_.rows)));
    auto const filters = filtersOf(properties.get());
    requireFilters(filters);
    if (filters == std::vector<H5Z_filter_t>{H5Z_FILTER_DEFLATE}) filters_ = Filters::deflate;
    if (filters == std::vector<H5Z_filter_t>{H5Z_FILTER_SHUFFLE, H5Z_FILTER_DEFLATE})
        filters_ = Filters::shuffleAndDeflate;
    bool const wholeRows = chunk[1] == static_cast<hsize_t>(header_.columns);
    ownCodec_ = filters_ != Filters::none && wholeRows && chunk[0] == static_cast<hsize_t>(bandRows_) &&
                isSinglePrecision(dataset_.get()) && fillsWithZero(properties.get());
}

std::optional<std::uint64_t> OmxTable::checksum() const {
    hdf5::Session const session;
    return readNumber<std::uint64_t>(dataset_.get(), omx::checksum, H5T_NATIVE_UINT64);
}

// The rows from `first` up to, not including, `behind`, to their place among all elements.
void OmxTable::readRows(int first, int behind, float* elements) const {
    if (first == behind) return;
    hdf5::Session const session;
    auto const columns = static_cast<hsize_t>(header_.columns);
    std::array<hsize_t, 2> const start = {static_cast<hsize_t>(first), 0};
    std::array<hsize_t, 2> const size = {static_cast<hsize_t>(behind - first), columns};
    Handle const selected(H5Dget_space(dataset_.get()), H5Sclose, "select rows");
    check(H5Sselect_hyperslab(selected.get(), H5S_SELECT_SET, start.data(), nullptr, size.data(), nullptr),
        "select rows");
    Handle const target(H5Screate_simple(2, size.data(), nullptr), H5Sclose, "select rows");
    float* const to = elements + static_cast<std::size_t>(first) * static_cast<std::size_t>(columns);
    check(
        H5Dread(dataset_.get(), H5T_NATIVE_FLOAT, target.get(), selected.get(), H5P_DEFAULT, to), "read the elements");
}

void OmxTable::readBand(int firstRow, float* elements) const {
    if (!ownCodec_) return readRows(firstRow, std::min(firstRow + bandRows_, header_.rows), elements);
    BlockDecoder decoder(filters_);
    inflateBand(decoder, firstRow, elements);
}

void OmxTable::readAll(float* elements) const {
    readAllBut(-1, elements);
}

void OmxTable::readAllBut(int firstRow, float* elements) const {
    if (!ownCodec_ && firstRow < 0) return readRows(0, header_.rows, elements);
    if (!ownCodec_) {
        readRows(0, firstRow, elements);
        return readRows(std::min(firstRow + bandRows_, header_.rows), header_.rows, elements);
    }
    auto const bands = static_cast<std::size_t>((header_.rows - 1) / bandRows_ + 1);
    platform::inParallel(bands, [&] {
        auto const decoder = std::make_shared<BlockDecoder>(filters_);
        return [&, decoder](std::size_t band) {
            int const first = static_cast<int>(band) * bandRows_;
            if (first != firstRow) inflateBand(*decoder, first, elements);
        };
    });
}

// The stored bytes of a chunk; none when it was never written.
struct OmxTable::StoredChunk {
    std::vector<std::byte> bytes;
    std::uint32_t skipped = 0;
};

OmxTable::StoredChunk OmxTable::storedChunk(int firstRow) const {
    hdf5::Session const session;
    std::array<hsize_t, 2> const start = {static_cast<hsize_t>(firstRow), 0};
    unsigned skipped = 0;
    haddr_t address = HADDR_UNDEF;
    hsize_t size = 0;
    StoredChunk chunk;
    check(H5Dget_chunk_info_by_coord(dataset_.get(), start.data(), &skipped, &address, &size), "find a chunk");
    if (address == HADDR_UNDEF) return chunk;
    if (size > H5Dget_storage_size(dataset_.get())) throw std::runtime_error("a chunk is larger than the table");
    chunk.bytes.resize(size);
    check(H5Dread_chunk(dataset_.get(), H5P_DEFAULT, start.data(), &chunk.skipped, chunk.bytes.data()), "read a chunk");
    return chunk;
}

void OmxTable::inflateBand(BlockDecoder& decoder, int firstRow, float* elements) const {
    auto const chunk = storedChunk(firstRow);
    if (chunk.bytes.empty()) return;
    auto const columns = static_cast<std::size_t>(header_.columns);
    auto const wholeSize = columns * static_cast<std::size_t>(bandRows_);
    float* const target = elements + static_cast<std::size_t>(firstRow) * columns;
    if (header_.rows - firstRow >= bandRows_) return decoder.decode(chunk.bytes, chunk.skipped, {target, wholeSize});
    std::vector<float> whole(wholeSize);
    decoder.decode(chunk.bytes, chunk.skipped, whole);
    std::copy_n(whole.begin(), columns * static_cast<std::size_t>(header_.rows - firstRow), target);
}

OmxReader::OmxReader(std::string const& path) {
    // Missing, unreadable and empty files in plainer words than HDF5's.
    auto file = platform::File::openForReading(path);
    if (file.size() == 0) throw std::runtime_error("it is empty");
    hdf5::Session const session;
    file_ = hdf5::openFile(std::move(file));
}

std::vector<std::string> OmxReader::tables() const {
    hdf5::Session const session;
    return datasetsOf(file_.get(), omx::tables, 2);
}

std::vector<std::string> OmxReader::lookups() const {
    hdf5::Session const session;
    return datasetsOf(file_.get(), omx::lookups, 1);
}

OmxTable OmxReader::table(std::string const& name) const {
    hdf5::Session const session;
    auto const known = tables();
    if (std::find(known.begin(), known.end(), name) == known.end())
        throw std::runtime_error("it has no table \"" + name + "\"");
    Handle const group = hdf5::openGroup(file_.get(), omx::tables);
    Handle dataset(H5Dopen2(group.get(), name.c_str(), H5P_DEFAULT), H5Dclose, "open the table");
    check(H5Iinc_ref(file_.get()), "keep the file open");
    return OmxTable(Handle(file_.get(), H5Fclose, "keep the file open"), std::move(dataset));
}

OmxTable OmxReader::onlyTable() const {
    auto const known = tables();
    if (std::find(known.begin(), known.end(), omx::table) != known.end()) return table(omx::table);
    if (known.empty()) throw std::runtime_error("it has no table under /data");
    if (known.size() > 1)
        throw std::runtime_error("it has " + std::to_string(known.size()) + " tables and none is named \"matrix\"");
    return table(known.front());
}

}
