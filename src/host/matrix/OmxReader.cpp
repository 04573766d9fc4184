#include "host/matrix/OmxReader.h"

#include "host/platform/NarrowText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace cubes::matrix {

using hdf5::check;
using hdf5::Handle;

namespace {

constexpr std::size_t largestNumber = 16;
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
    // HDF5 itself does not check the element size in a damaged file.
    if ((kind != H5T_INTEGER && kind != H5T_FLOAT) || H5Tget_size(type.get()) > largestNumber)
        throw std::runtime_error("the table's elements are not numbers");
}

bool isOurs(hid_t dataset) {
    return H5Aexists(dataset, omx::content) > 0 || H5Aexists(dataset, omx::checksum) > 0;
}

// Only a table of the library may be large and almost empty: in other files that indicates damage, and reading would
// take very long.
void requireStorage(hid_t file, hid_t dataset, std::size_t elements) {
    hsize_t size = 0;
    check(H5Fget_filesize(file, &size), "read the size of the file");
    bool const fits = elements / hdf5::mostInflation <= size || elements <= alwaysFits || isOurs(dataset);
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

std::vector<std::string> linksOf(hid_t group) {
    H5G_info_t info{};
    hdf5::check(H5Gget_info(group, &info), "list a group");
    std::vector<std::string> names;
    for (hsize_t i = 0; i < info.nlinks; ++i) {
        auto const ask = [&](char* text, std::size_t size) {
            return hdf5::check(
                H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, i, text, size, H5P_DEFAULT), "list a group");
        };
        std::string name(static_cast<std::size_t>(ask(nullptr, 0)), '\0');
        ask(name.data(), name.size() + 1);
        names.push_back(std::move(name));
    }
    return names;
}

// Links and datasets that are stored elsewhere are listed as well; opening them fails.
bool isDataset(hid_t group, std::string const& name, int dimensions) {
    if (!hdf5::isOwnLink(group, name)) return true;
    hid_t const object = H5Oopen(group, name.c_str(), H5P_DEFAULT);
    if (object < 0) return false;
    Handle const owner(object, H5Oclose, "open an object");
    if (H5Iget_type(object) != H5I_DATASET) return false;
    if (!hdf5::isOwnStorage(object)) return true;
    Handle const space(H5Dget_space(object), H5Sclose, "read the dimensions");
    return H5Sget_simple_extent_ndims(space.get()) == dimensions;
}

constexpr std::array usualNames = {"zone", "zones", "zone_number", "zone number", "zoneid", "zone_id", "no", "taz"};

bool isUsualName(std::string const& name) {
    return std::find(usualNames.begin(), usualNames.end(), platform::asciiLower(name)) != usualNames.end();
}

// Empty when the lookup cannot be chosen.
std::string zoneLookup(std::vector<std::string> const& names) {
    auto const usual = std::find_if(names.begin(), names.end(), isUsualName);
    if (usual != names.end()) return *usual;
    return names.size() == 1 ? names.front() : std::string();
}

std::vector<double> numbersOf(hid_t group, std::string const& name, hsize_t rows) {
    Handle const lookup = hdf5::openDataset(group, name);
    Handle const type(H5Dget_type(lookup.get()), H5Tclose, "open a lookup");
    Handle const space(H5Dget_space(lookup.get()), H5Sclose, "open a lookup");
    H5T_class_t const kind = H5Tget_class(type.get());
    if (kind != H5T_INTEGER && kind != H5T_FLOAT) return {};
    if (H5Sget_simple_extent_npoints(space.get()) != static_cast<hssize_t>(rows)) return {};
    std::vector<double> numbers(rows);
    if (H5Dread(lookup.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers.data()) < 0) return {};
    return numbers;
}

bool isWholeNumber(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    return number >= Limits::min() && number <= Limits::max() && number == std::floor(number);
}

bool areDistinct(std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return std::adjacent_find(numbers.begin(), numbers.end()) == numbers.end();
}

std::vector<std::int32_t> wholeNumbers(std::vector<double> const& numbers) {
    std::vector<std::int32_t> whole;
    for (double const number : numbers) whole.push_back(static_cast<std::int32_t>(number));
    return whole;
}

// The names of the datasets with that many dimensions in a group, sorted; none when there is no such group.
std::vector<std::string> datasetsOf(hid_t file, char const* group, int dimensions) {
    if (!hdf5::hasLink(file, group)) return {};
    Handle const opened = hdf5::openGroup(file, group);
    std::vector<std::string> names = linksOf(opened.get());
    std::erase_if(names, [&](std::string const& name) { return !isDataset(opened.get(), name, dimensions); });
    return names;
}

// The zone numbers in a lookup with one for each row; none when they are no whole numbers.
std::vector<double> zoneNumbers(hid_t file, std::string const& lookup, int rows) {
    Handle const group = hdf5::openGroup(file, omx::lookups);
    auto numbers = numbersOf(group.get(), lookup, static_cast<hsize_t>(rows));
    return std::ranges::all_of(numbers, isWholeNumber) ? std::move(numbers) : std::vector<double>();
}

// The zone numbers in a file of another program: those of a lookup with a usual name, else of the only lookup. None
// unless they are distinct.
std::vector<std::int32_t> foreignZones(hid_t file, std::vector<std::string> const& lookups, int rows) {
    std::string const name = zoneLookup(lookups);
    if (name.empty()) return {};
    auto const numbers = zoneNumbers(file, name, rows);
    return areDistinct(numbers) ? wholeNumbers(numbers) : std::vector<std::int32_t>();
}

// Whether there is the lookup whose numbers the content id covers.
bool hasOwnZones(hid_t file) {
    auto const lookups = datasetsOf(file, omx::lookups, 1);
    return std::ranges::find(lookups, omx::zones) != lookups.end();
}

// The zone numbers of a table. In a file of ours they may repeat, as in the matrix that was saved.
std::vector<std::int32_t> zonesOf(hid_t file, hid_t dataset, FileHeader const& header) {
    if (header.rows != header.columns) return {};
    if (isOurs(dataset) && hasOwnZones(file)) return wholeNumbers(zoneNumbers(file, omx::zones, header.rows));
    return foreignZones(file, datasetsOf(file, omx::lookups, 1), header.rows);
}

// The stored bytes of a chunk; none when it was never written.
struct StoredChunk {
    std::vector<std::byte> bytes;
    std::uint32_t skipped = 0;
};

StoredChunk storedChunk(hid_t dataset, int firstRow) {
    hdf5::Session const session;
    std::array<hsize_t, 2> const start = {static_cast<hsize_t>(firstRow), 0};
    unsigned skipped = 0;
    haddr_t address = HADDR_UNDEF;
    hsize_t size = 0;
    StoredChunk chunk;
    check(H5Dget_chunk_info_by_coord(dataset, start.data(), &skipped, &address, &size), "find a chunk");
    if (address == HADDR_UNDEF) return chunk;
    if (size > H5Dget_storage_size(dataset)) throw std::runtime_error("a chunk is larger than the table");
    chunk.bytes.resize(size);
    check(H5Dread_chunk(dataset, H5P_DEFAULT, start.data(), &chunk.skipped, chunk.bytes.data()), "read a chunk");
    return chunk;
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
    header_.name = hdf5::readText(id, omx::name);
    header_.selectedLink = readNumber<std::int32_t>(id, omx::selectedLink, H5T_NATIVE_INT32).value_or(0) != 0;
    header_.zones = zonesOf(file_.get(), id, header_);
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

RecordedContent OmxTable::recorded() const {
    hdf5::Session const session;
    RecordedContent recorded;
    if (hdf5::hasLink(file_.get(), hdf5::IndexRecord::dataset))
        recorded.id = hdf5::Id128::parse(hdf5::readText(dataset_.get(), omx::content)).value_or(hdf5::Id128{});
    recorded.checksum = readNumber<std::uint64_t>(dataset_.get(), omx::checksum, H5T_NATIVE_UINT64);
    recorded.hasZones = hasOwnZones(file_.get());
    return recorded;
}

// Reads the rows from `first` up to, not including, `behind`, to their place among all elements.
void OmxTable::readRows(int first, int behind, float* all) const {
    if (first == behind) return;
    hdf5::Session const session;
    auto const columns = static_cast<hsize_t>(header_.columns);
    std::array<hsize_t, 2> const start = {static_cast<hsize_t>(first), 0};
    std::array<hsize_t, 2> const size = {static_cast<hsize_t>(behind - first), columns};
    Handle const selected(H5Dget_space(dataset_.get()), H5Sclose, "select rows");
    check(H5Sselect_hyperslab(selected.get(), H5S_SELECT_SET, start.data(), nullptr, size.data(), nullptr),
        "select rows");
    Handle const target(H5Screate_simple(2, size.data(), nullptr), H5Sclose, "select rows");
    float* const to = all + static_cast<std::size_t>(first) * static_cast<std::size_t>(columns);
    check(
        H5Dread(dataset_.get(), H5T_NATIVE_FLOAT, target.get(), selected.get(), H5P_DEFAULT, to), "read the elements");
}

void OmxTable::readBand(std::size_t band, float* all) const {
    if (!ownCodec_) {
        int const first = bands().firstRow(band);
        return readRows(first, std::min(first + bandRows_, header_.rows), all);
    }
    BlockDecoder decoder(filters_);
    inflate(decoder, band, all);
}

void OmxTable::readAllBut(std::optional<std::size_t> done, float* all) const {
    if (ownCodec_)
        return inflateAllBut(
            done, bands(), filters_, [&](BlockDecoder& decoder, std::size_t band) { inflate(decoder, band, all); });
    if (!done) return readRows(0, header_.rows, all);
    int const first = bands().firstRow(*done);
    readRows(0, first, all);
    readRows(std::min(first + bandRows_, header_.rows), header_.rows, all);
}

void OmxTable::inflate(BlockDecoder& decoder, std::size_t band, float* all) const {
    auto const [bytes, skipped] = storedChunk(dataset_.get(), bands().firstRow(band));
    inflateBand(decoder, bands(), band, bytes, skipped, all);
}

OmxReader::OmxReader(std::string const& path) {
    // Missing, unreadable and empty files get a clearer message than HDF5's.
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
    Handle dataset = hdf5::openDataset(group.get(), name);
    check(H5Iinc_ref(file_.get()), "keep the file open");
    return OmxTable(Handle(file_.get(), H5Fclose, "keep the file open"), std::move(dataset));
}

bool OmxReader::hasRecord() const {
    hdf5::Session const session;
    return hdf5::hasLink(file_.get(), hdf5::IndexRecord::dataset);
}

bool OmxReader::hasRecordAt(std::uint64_t offset) const {
    hdf5::Session const session;
    return hdf5::hasRecordAt(file_.get(), offset);
}

hdf5::Provenance OmxReader::provenance() const {
    hdf5::Session const session;
    return hdf5::readProvenance(file_.get());
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
