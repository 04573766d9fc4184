#include "reader/StoredObjects.h"

#include "reader/ChunkCheck.h"

#include <algorithm>
#include <limits>
#include <span>
#include <stdexcept>

namespace cubes::reader {

using hdf5::check;
using hdf5::Handle;

namespace {

constexpr std::size_t largestNumber = 16;

/// A path divided at its last slash.
struct Place {
    std::string group;
    std::string name;
};

Place placeOf(std::string const& path) {
    auto const slash = path.rfind('/');
    if (slash == std::string::npos) return {"", path};
    return {path.substr(0, slash), path.substr(slash + 1)};
}

// Soft, external and user-defined links lead elsewhere.
bool isOwnLink(hid_t parent, std::string const& name) {
    H5L_info_t link{};
    check(H5Lget_info(parent, name.c_str(), &link, H5P_DEFAULT), "find " + name);
    return link.type == H5L_TYPE_HARD;
}

void requireOwnLink(hid_t parent, std::string const& name) {
    if (!isOwnLink(parent, name))
        throw std::runtime_error(name + " is a soft or external link; put the table itself into the file");
}

// External and virtual storage is elsewhere.
bool isOwnStorage(hid_t dataset) {
    Handle const properties(H5Dget_create_plist(dataset), H5Pclose, "read the layout");
    H5D_layout_t const kind = H5Pget_layout(properties.get());
    bool const isKnown = kind == H5D_COMPACT || kind == H5D_CONTIGUOUS || kind == H5D_CHUNKED;
    return isKnown && H5Pget_external_count(properties.get()) == 0;
}

std::vector<std::string> namesIn(hid_t group) {
    H5G_info_t info{};
    check(H5Gget_info(group, &info), "list a group");
    std::vector<std::string> names;
    for (hsize_t i = 0; i < info.nlinks; ++i) {
        auto const ask = [&](char* text, std::size_t size) {
            return check(
                H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, i, text, size, H5P_DEFAULT), "list a group");
        };
        std::string name(static_cast<std::size_t>(ask(nullptr, 0)), '\0');
        ask(name.data(), name.size() + 1);
        names.push_back(std::move(name));
    }
    return names;
}

std::vector<std::uint64_t> dimensionsOf(hid_t dataset) {
    Handle const space(H5Dget_space(dataset), H5Sclose, "read the dimensions");
    int const count = check(H5Sget_simple_extent_ndims(space.get()), "read the dimensions");
    std::vector<hsize_t> sizes(static_cast<std::size_t>(count));
    check(H5Sget_simple_extent_dims(space.get(), sizes.data(), nullptr), "read the dimensions");
    return {sizes.begin(), sizes.end()};
}

hdf5::Link linkOf(hid_t group, std::string const& name) {
    if (!isOwnLink(group, name)) return {name, hdf5::LinkKind::elsewhere};
    hid_t const object = H5Oopen(group, name.c_str(), H5P_DEFAULT);
    if (object < 0) return {name, hdf5::LinkKind::other};
    Handle const owner(object, H5Oclose, "open an object");
    if (H5Iget_type(object) == H5I_GROUP) return {name, hdf5::LinkKind::group};
    if (H5Iget_type(object) != H5I_DATASET) return {name, hdf5::LinkKind::other};
    if (!isOwnStorage(object)) return {name, hdf5::LinkKind::elsewhere};
    return {name, hdf5::LinkKind::dataset, static_cast<std::int32_t>(dimensionsOf(object).size())};
}

hdf5::StoredType describe(hid_t type) {
    hdf5::StoredType described;
    described.size = H5Tget_size(type);
    switch (H5Tget_class(type)) {
    case H5T_INTEGER:
        described.kind = hdf5::TypeClass::integer;
        described.isSigned = H5Tget_sign(type) == H5T_SGN_2;
        break;
    case H5T_FLOAT:
        described.kind = hdf5::TypeClass::real;
        described.isFloat32 = H5Tequal(type, H5T_IEEE_F32LE) > 0;
        break;
    case H5T_STRING:
        if (H5Tis_variable_str(type) == 0) described.kind = hdf5::TypeClass::text;
        break;
    default:
        break;
    }
    return described;
}

hdf5::DatasetLayout layoutOf(hid_t properties) {
    switch (H5Pget_layout(properties)) {
    case H5D_CHUNKED:
        return hdf5::DatasetLayout::chunked;
    case H5D_CONTIGUOUS:
        return hdf5::DatasetLayout::contiguous;
    default:
        return hdf5::DatasetLayout::compact;
    }
}

bool fillsWithZero(hid_t properties) {
    H5D_fill_value_t state = H5D_FILL_VALUE_UNDEFINED;
    check(H5Pfill_value_defined(properties, &state), "read the layout");
    return state == H5D_FILL_VALUE_DEFAULT;
}

std::vector<hdf5::Filter> filtersOf(hid_t properties) {
    std::vector<hdf5::Filter> filters;
    int const count = check(H5Pget_nfilters(properties), "read the layout");
    for (int i = 0; i < count; ++i) {
        unsigned flags = 0;
        std::size_t values = 0;
        H5Z_filter_t const id =
            H5Pget_filter2(properties, static_cast<unsigned>(i), &flags, &values, nullptr, 0, nullptr, nullptr);
        filters.push_back({id, H5Zfilter_avail(id) > 0});
    }
    return filters;
}

std::vector<hsize_t> chunkOf(hid_t dataset, std::size_t dimensions) {
    Handle const properties(H5Dget_create_plist(dataset), H5Pclose, "read the layout");
    std::vector<hsize_t> chunk(dimensions);
    if (layoutOf(properties.get()) != hdf5::DatasetLayout::chunked) return {};
    int const found =
        check(H5Pget_chunk(properties.get(), static_cast<int>(dimensions), chunk.data()), "read the layout");
    bool const isPossible = static_cast<std::size_t>(found) == dimensions &&
                            std::ranges::none_of(chunk, [](hsize_t size) { return size == 0; });
    if (!isPossible) throw std::runtime_error("its chunk sizes are impossible");
    return chunk;
}

// HDF5 does not count the bytes before its own in the places of chunks.
bool startsAtZero(hid_t file) {
    Handle const properties(H5Fget_create_plist(file), H5Pclose, "read the properties of the file");
    hsize_t before = 0;
    check(H5Pget_userblock(properties.get(), &before), "read the properties of the file");
    return before == 0;
}

hdf5::ChunkPlace placeOfChunk(hid_t dataset, std::vector<hsize_t> const& start) {
    unsigned skipped = 0;
    haddr_t address = HADDR_UNDEF;
    hsize_t size = 0;
    check(H5Dget_chunk_info_by_coord(dataset, start.data(), &skipped, &address, &size), "find a chunk");
    if (address == HADDR_UNDEF) return {};
    // The superblock is there.
    if (address == 0) throw std::runtime_error("a chunk is not within the file");
    return {address, size, skipped};
}

std::vector<std::byte> storedBytes(hid_t dataset, std::vector<hsize_t> const& start, std::uint64_t size) {
    std::vector<std::byte> bytes(size);
    std::uint32_t skipped = 0;
    check(H5Dread_chunk(dataset, H5P_DEFAULT, start.data(), &skipped, bytes.data()), "read a chunk");
    return bytes;
}

template <typename Factor>
std::uint64_t product(std::vector<Factor> const& factors, std::uint64_t result) {
    for (auto const factor : factors) {
        if (factor != 0 && result > std::numeric_limits<std::uint64_t>::max() / factor)
            throw std::runtime_error("it claims more elements than there can be");
        result *= factor;
    }
    return result;
}

// HDF5 itself does not compare them, and reads beyond its memory. Contiguous elements may not be stored at all.
void requireWholeStorage(hdf5::Dataset const& dataset, std::string const& name) {
    if (dataset.layout == hdf5::DatasetLayout::chunked) return;
    bool const isUnstored = dataset.layout == hdf5::DatasetLayout::contiguous && dataset.storedSize == 0;
    if (!isUnstored && dataset.storedSize != product(dataset.dimensions, dataset.type.size))
        throw std::runtime_error(name + " has another size than its dimensions need");
}

// Advances a chunk's start to the next chunk, the last dimension first; returns whether there is one before `end`.
bool advance(std::vector<hsize_t>& start, std::vector<hsize_t> const& begin, std::vector<hsize_t> const& end,
    std::vector<hsize_t> const& chunk) {
    for (std::size_t i = start.size(); i-- > 0;) {
        start[i] += chunk[i];
        if (start[i] < end[i]) return true;
        start[i] = begin[i];
    }
    return false;
}

hid_t numbersIn(hdf5::StoredType const& type) {
    if (type.kind == hdf5::TypeClass::real) return hdf5::hdfType(hdf5::NumberType::float64);
    return hdf5::hdfType(type.isSigned ? hdf5::NumberType::int64 : hdf5::NumberType::uint64);
}

}

StoredObjects::StoredObjects(InputFile& file) : file_(file.open()) {}

std::uint64_t StoredObjects::fileSize() const {
    hsize_t size = 0;
    check(H5Fget_filesize(file_.get(), &size), "read the size of the file");
    return size;
}

Handle StoredObjects::group(std::string const& path) const {
    Handle opened(H5Gopen2(file_.get(), "/", H5P_DEFAULT), H5Gclose, "open the root");
    for (std::size_t at = 0; at < path.size();) {
        auto const end = std::min(path.find('/', at), path.size());
        std::string const name = path.substr(at, end - at);
        requireOwnLink(opened.get(), name);
        opened = Handle(H5Gopen2(opened.get(), name.c_str(), H5P_DEFAULT), H5Gclose, "open " + name);
        at = end + 1;
    }
    return opened;
}

hid_t StoredObjects::opened(std::string const& path) {
    if (dataset_.get() >= 0 && path == path_) return dataset_.get();
    auto const [groupPath, name] = placeOf(path);
    Handle const parent = group(groupPath);
    requireOwnLink(parent.get(), name);
    Handle dataset(H5Dopen2(parent.get(), name.c_str(), H5P_DEFAULT), H5Dclose, "open " + name);
    if (!isOwnStorage(dataset.get()))
        throw std::runtime_error(name + " is not stored in this file; copy its content into the file");
    dataset_ = std::move(dataset);
    path_ = path;
    return dataset_.get();
}

bool StoredObjects::exists(std::string const& path) const {
    auto const [groupPath, name] = placeOf(path);
    return H5Lexists(group(groupPath).get(), name.c_str(), H5P_DEFAULT) > 0;
}

std::vector<hdf5::Link> StoredObjects::links(std::string const& path) const {
    Handle const opened = group(path);
    std::vector<hdf5::Link> links;
    for (std::string const& name : namesIn(opened.get())) links.push_back(linkOf(opened.get(), name));
    return links;
}

hdf5::Dataset StoredObjects::dataset(std::string const& path) {
    hid_t const id = opened(path);
    Handle const properties(H5Dget_create_plist(id), H5Pclose, "read the layout");
    Handle const type(H5Dget_type(id), H5Tclose, "read the type of the elements");
    hdf5::Dataset described;
    described.type = describe(type.get());
    described.layout = layoutOf(properties.get());
    described.hasPlaces = startsAtZero(file_.get());
    described.fillsWithZero = fillsWithZero(properties.get());
    haddr_t const offset = H5Dget_offset(id);
    described.offset = offset == HADDR_UNDEF ? 0 : offset;
    described.storedSize = H5Dget_storage_size(id);
    described.dimensions = dimensionsOf(id);
    auto const chunk = chunkOf(id, described.dimensions.size());
    described.chunk.assign(chunk.begin(), chunk.end());
    described.filters = filtersOf(properties.get());
    requireWholeStorage(described, placeOf(path).name);
    return described;
}

std::optional<hdf5::Attribute> StoredObjects::attribute(std::string const& object, std::string const& name) {
    hid_t const id = object.empty() ? file_.get() : opened(object);
    if (H5Aexists(id, name.c_str()) <= 0) return std::nullopt;
    Handle const attribute(H5Aopen(id, name.c_str(), H5P_DEFAULT), H5Aclose, "open an attribute");
    Handle const type(H5Aget_type(attribute.get()), H5Tclose, "open an attribute");
    Handle const space(H5Aget_space(attribute.get()), H5Sclose, "open an attribute");
    hdf5::Attribute found;
    found.type = describe(type.get());
    found.count = static_cast<std::uint64_t>(check(H5Sget_simple_extent_npoints(space.get()), "open an attribute"));
    bool const isText = found.type.kind == hdf5::TypeClass::text;
    bool const isNumber = found.type.kind != hdf5::TypeClass::other && !isText && found.type.size <= largestNumber;
    // What is larger than the file is damaged.
    std::uint64_t const most = fileSize();
    if (found.type.size > most || found.count > most / found.type.size) return found;
    if (!isNumber && (!isText || found.count != 1)) return found;
    found.value.resize(isText ? found.type.size : found.count * sizeof(double));
    hid_t const memory = isText ? type.get() : numbersIn(found.type);
    if (H5Aread(attribute.get(), memory, found.value.data()) < 0) found.value.clear();
    return found;
}

std::vector<hdf5::ChunkPlace> StoredObjects::chunks(std::string const& path) {
    hid_t const id = opened(path);
    auto const sizes = dimensionsOf(id);
    auto const chunk = chunkOf(id, sizes.size());
    if (chunk.empty()) throw std::runtime_error("its elements are not in chunks");
    std::vector<hdf5::ChunkPlace> places;
    std::vector<hsize_t> start(sizes.size(), 0);
    for (; start[0] < sizes[0]; start[0] += chunk[0]) places.push_back(placeOfChunk(id, start));
    return places;
}

void StoredObjects::requireSoundChunks(hid_t dataset, std::uint64_t first, std::uint64_t rows) const {
    auto const sizes = dimensionsOf(dataset);
    auto const chunk = chunkOf(dataset, sizes.size());
    if (chunk.empty()) return;
    Handle const properties(H5Dget_create_plist(dataset), H5Pclose, "read the layout");
    Handle const type(H5Dget_type(dataset), H5Tclose, "read the type of the elements");
    ChunkCheck sound(filtersOf(properties.get()), product(chunk, H5Tget_size(type.get())), fileSize());
    std::vector<hsize_t> begin(sizes.size(), 0);
    std::vector<hsize_t> behind(sizes.begin(), sizes.end());
    begin[0] = first - first % chunk[0];
    behind[0] = first + rows;
    auto start = begin;
    do {
        auto const place = placeOfChunk(dataset, start);
        sound.require(place, [&] { return storedBytes(dataset, start, place.size); });
    } while (advance(start, begin, behind, chunk));
}

std::vector<std::byte> StoredObjects::numbers(
    std::string const& path, hdf5::NumberType type, std::uint64_t first, std::uint64_t rows) {
    hid_t const id = opened(path);
    auto const sizes = dimensionsOf(id);
    if (sizes.empty() || first > sizes[0] || rows > sizes[0] - first)
        throw std::runtime_error("there are no such elements");
    std::vector<std::byte> numbers;
    if (rows == 0) return numbers;
    requireSoundChunks(id, first, rows);
    std::vector<hsize_t> start(sizes.size(), 0);
    std::vector<hsize_t> size(sizes.begin(), sizes.end());
    start[0] = first;
    size[0] = rows;
    numbers.resize(product(size, hdf5::sizeOf(type)));
    Handle const selected(H5Dget_space(id), H5Sclose, "select rows");
    check(H5Sselect_hyperslab(selected.get(), H5S_SELECT_SET, start.data(), nullptr, size.data(), nullptr),
        "select rows");
    Handle const target(H5Screate_simple(static_cast<int>(size.size()), size.data(), nullptr), H5Sclose, "select rows");
    check(H5Dread(id, hdf5::hdfType(type), target.get(), selected.get(), H5P_DEFAULT, numbers.data()),
        "read " + placeOf(path).name);
    return numbers;
}

}
