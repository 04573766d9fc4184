#include "Numbers.h"

#include "host/hdf5/IndexRecord.h"

#include <algorithm>

namespace cubes::routes {

using hdf5::check;
using hdf5::Handle;
using hdf5::untimedProperties;

namespace {

constexpr hsize_t chunkBytes = hsize_t{1} << 18;
constexpr unsigned quickestLevel = 1;
// Other programs may write wider attributes.
constexpr std::size_t widestNumber = 8;

Handle listOf(std::size_t count) {
    hsize_t const size = count;
    return Handle(H5Screate_simple(1, &size, nullptr), H5Sclose, "describe a list");
}

// An empty list has no chunks.
Handle layoutFor(NumberType type, std::size_t count, Shuffle shuffle) {
    char const* const action = "describe the layout";
    Handle layout = untimedProperties(H5P_DATASET_CREATE);
    if (count == 0) return layout;
    hsize_t const chunk = std::min<hsize_t>(count, chunkBytes / H5Tget_size(type.file));
    check(H5Pset_chunk(layout.get(), 1, &chunk), action);
    if (shuffle == Shuffle::yes) check(H5Pset_shuffle(layout.get()), action);
    check(H5Pset_deflate(layout.get(), quickestLevel), action);
    check(H5Pset_fletcher32(layout.get()), action);
    return layout;
}

bool fits(hid_t found, hid_t wanted) {
    H5T_class_t const kind = H5Tget_class(wanted);
    if (H5Tget_class(found) != kind || H5Tget_size(found) > H5Tget_size(wanted)) return false;
    return kind != H5T_INTEGER || H5Tget_sign(found) == H5Tget_sign(wanted);
}

Handle openAttribute(hid_t object, char const* name) {
    return Handle(H5Aopen(object, name, H5P_DEFAULT), H5Aclose, std::string("find the attribute ") + name);
}

void requireCount(hid_t attribute, char const* name, std::size_t count) {
    Handle const space(H5Aget_space(attribute), H5Sclose, "describe an attribute");
    if (H5Sget_simple_extent_npoints(space.get()) != static_cast<hssize_t>(count))
        throw std::runtime_error(std::string("the attribute ") + name + " has another size");
}

Handle createAttribute(hid_t object, char const* name, hid_t type, hid_t space) {
    if (H5Aexists(object, name) > 0) check(H5Adelete(object, name), "replace an attribute");
    return Handle(H5Acreate2(object, name, type, space, H5P_DEFAULT, H5P_DEFAULT), H5Aclose, "create an attribute");
}

}

template <>
NumberType typeOf<std::uint8_t>() {
    return {H5T_NATIVE_UINT8, H5T_STD_U8LE};
}
template <>
NumberType typeOf<std::int16_t>() {
    return {H5T_NATIVE_INT16, H5T_STD_I16LE};
}
template <>
NumberType typeOf<std::uint16_t>() {
    return {H5T_NATIVE_UINT16, H5T_STD_U16LE};
}
template <>
NumberType typeOf<std::int32_t>() {
    return {H5T_NATIVE_INT32, H5T_STD_I32LE};
}
template <>
NumberType typeOf<std::uint32_t>() {
    return {H5T_NATIVE_UINT32, H5T_STD_U32LE};
}
template <>
NumberType typeOf<std::uint64_t>() {
    return {H5T_NATIVE_UINT64, H5T_STD_U64LE};
}
template <>
NumberType typeOf<float>() {
    return {H5T_NATIVE_FLOAT, H5T_IEEE_F32LE};
}
template <>
NumberType typeOf<double>() {
    return {H5T_NATIVE_DOUBLE, H5T_IEEE_F64LE};
}

Handle writeDataset(
    hid_t parent, std::string const& name, NumberType type, void const* numbers, std::size_t count, Shuffle shuffle) {
    Handle const space = listOf(count);
    Handle const layout = layoutFor(type, count, shuffle);
    Handle dataset(H5Dcreate2(parent, name.c_str(), type.file, space.get(), H5P_DEFAULT, layout.get(), H5P_DEFAULT),
        H5Dclose, "create " + name);
    if (count > 0) check(H5Dwrite(dataset.get(), type.memory, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers), "write " + name);
    return dataset;
}

std::size_t countNumbers(hid_t dataset, std::string const& name, NumberType type) {
    Handle const stored(H5Dget_type(dataset), H5Tclose, "read the type of " + name);
    if (!fits(stored.get(), type.memory)) throw std::runtime_error(name + " has numbers of another type");
    Handle const space(H5Dget_space(dataset), H5Sclose, "read the size of " + name);
    hsize_t count = 0;
    if (H5Sget_simple_extent_ndims(space.get()) != 1) throw std::runtime_error(name + " is not a list");
    check(H5Sget_simple_extent_dims(space.get(), &count, nullptr), "read the size of " + name);
    if (count / hdf5::mostInflation * H5Tget_size(stored.get()) > hdf5::fileSize(dataset))
        throw std::runtime_error(name + " is larger than the file");
    return count;
}

void readDataset(hid_t dataset, std::string const& name, NumberType type, void* numbers) {
    check(H5Dread(dataset, type.memory, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers), "read " + name);
}

void writeAttribute(hid_t object, char const* name, NumberType type, void const* numbers, std::size_t count) {
    Handle const space = count == 1 ? Handle(H5Screate(H5S_SCALAR), H5Sclose, "describe a number") : listOf(count);
    Handle const attribute = createAttribute(object, name, type.file, space.get());
    check(H5Awrite(attribute.get(), type.memory, numbers), "write an attribute");
}

void readAttribute(hid_t object, char const* name, NumberType type, void* numbers, std::size_t count) {
    Handle const attribute = openAttribute(object, name);
    Handle const stored(H5Aget_type(attribute.get()), H5Tclose, "describe an attribute");
    if (H5Tget_class(stored.get()) != H5Tget_class(type.memory) || H5Tget_size(stored.get()) > widestNumber)
        throw std::runtime_error(std::string("the attribute ") + name + " has another type");
    requireCount(attribute.get(), name, count);
    check(H5Aread(attribute.get(), type.memory, numbers), std::string("read the attribute ") + name);
}

std::string textAttribute(hid_t object, char const* name) {
    openAttribute(object, name);
    auto text = hdf5::findText(object, name);
    if (!text) throw std::runtime_error(std::string("the attribute ") + name + " is not a text of fixed length");
    return *std::move(text);
}

}
