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
    hsize_t const chunk = std::min<hsize_t>(count, chunkBytes / hdf5::sizeOf(type));
    check(H5Pset_chunk(layout.get(), 1, &chunk), action);
    if (shuffle == Shuffle::yes) check(H5Pset_shuffle(layout.get()), action);
    check(H5Pset_deflate(layout.get(), quickestLevel), action);
    check(H5Pset_fletcher32(layout.get()), action);
    return layout;
}

// By NumberType.
constexpr hdf5::TypeClass kinds[] = {hdf5::TypeClass::integer, hdf5::TypeClass::integer, hdf5::TypeClass::integer,
    hdf5::TypeClass::integer, hdf5::TypeClass::integer, hdf5::TypeClass::integer, hdf5::TypeClass::integer,
    hdf5::TypeClass::real, hdf5::TypeClass::real};

constexpr bool isSigned(NumberType type) {
    return type == NumberType::int16 || type == NumberType::int32 || type == NumberType::int64;
}

bool fits(hdf5::StoredType const& found, NumberType wanted) {
    hdf5::TypeClass const kind = kinds[static_cast<std::size_t>(wanted)];
    if (found.kind != kind || found.size > hdf5::sizeOf(wanted)) return false;
    return kind != hdf5::TypeClass::integer || found.isSigned == isSigned(wanted);
}

std::string nameOf(std::string const& path) {
    return path.substr(path.rfind('/') + 1);
}

hdf5::Attribute foundAttribute(hdf5::GuardedFile const& file, std::string const& object, char const* name) {
    auto found = file.attribute(object, name);
    if (!found) throw std::runtime_error(std::string("the attribute ") + name + " is missing");
    return *std::move(found);
}

}

Handle writeDataset(
    hid_t parent, std::string const& name, NumberType type, void const* numbers, std::size_t count, Shuffle shuffle) {
    Handle const space = listOf(count);
    Handle const layout = layoutFor(type, count, shuffle);
    Handle dataset(
        H5Dcreate2(parent, name.c_str(), hdf5::hdfType(type), space.get(), H5P_DEFAULT, layout.get(), H5P_DEFAULT),
        H5Dclose, "create " + name);
    if (count > 0)
        check(H5Dwrite(dataset.get(), hdf5::hdfType(type), H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers), "write " + name);
    return dataset;
}

StoredNumbers::StoredNumbers(hdf5::GuardedFile const& file, std::string const& path, NumberType type)
    : file_(file), path_(path), type_(type), dataset_(file.dataset(path)) {
    if (!fits(dataset_.type, type)) throw std::runtime_error(nameOf(path) + " has numbers of another type");
    if (dataset_.dimensions.size() != 1) throw std::runtime_error(nameOf(path) + " is not a list");
    std::uint64_t const count = dataset_.dimensions[0];
    if (count / hdf5::mostInflation * dataset_.type.size > file.size())
        throw std::runtime_error(nameOf(path) + " is larger than the file");
    count_ = static_cast<std::size_t>(count);
}

void StoredNumbers::read(void* numbers) const {
    file_.read(path_, dataset_, type_, 0, {static_cast<std::byte*>(numbers), count_ * hdf5::sizeOf(type_)});
}

void writeAttribute(hid_t object, char const* name, NumberType type, void const* numbers, std::size_t count) {
    constexpr char const* action = "write an attribute";
    hid_t const stored = hdf5::hdfType(type);
    Handle const space = count == 1 ? Handle(H5Screate(H5S_SCALAR), H5Sclose, action) : listOf(count);
    Handle const attribute(H5Acreate2(object, name, stored, space.get(), H5P_DEFAULT, H5P_DEFAULT), H5Aclose, action);
    check(H5Awrite(attribute.get(), stored, numbers), action);
}

std::vector<std::int64_t> readAttribute(
    hdf5::GuardedFile const& file, std::string const& object, char const* name, std::size_t count) {
    auto const found = foundAttribute(file, object, name);
    if (found.type.kind != hdf5::TypeClass::integer || found.type.size > widestNumber)
        throw std::runtime_error(std::string("the attribute ") + name + " has another type");
    std::vector<std::int64_t> numbers(count);
    auto const bytes = std::as_writable_bytes(std::span(numbers));
    if (found.count != count || found.value.size() != bytes.size())
        throw std::runtime_error(std::string("the attribute ") + name + " has another size");
    std::ranges::copy(found.value, bytes.begin());
    return numbers;
}

std::string textAttribute(hdf5::GuardedFile const& file, std::string const& object, char const* name) {
    foundAttribute(file, object, name);
    auto text = hdf5::findText(file, object, name);
    if (!text) throw std::runtime_error(std::string("the attribute ") + name + " is not a text of fixed length");
    return *std::move(text);
}

}
