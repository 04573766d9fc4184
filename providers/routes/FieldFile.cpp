#include "FieldFile.h"

#include "Hdf5Numbers.h"
#include "platform/NarrowText.h"

#include <algorithm>

namespace cubes::routes {

using namespace VL::Interface;

namespace {

using hdf5::typeOf;

// By RouteFieldType.
constexpr hdf5::NumberType (*numberTypes[])() = {typeOf<std::uint8_t>, typeOf<std::uint8_t>, typeOf<std::int16_t>,
    typeOf<std::int32_t>, typeOf<float>, typeOf<double>};

// Names of fields may hold anything, so that datasets have numbers for names: "0000", "0001".
std::string datasetName(std::size_t place) {
    constexpr std::size_t length = 4;
    std::string const digits = std::to_string(place);
    return std::string(length - std::min(length, digits.size()), '0') + digits;
}

void writeField(hid_t group, std::string const& name, Field const& field) {
    hdf5::Handle const dataset =
        hdf5::writeDataset(group, name, numberTypes[field.type](), field.values.data(), field.count);
    std::int32_t const type = field.type;
    hdf5::writeText(dataset.get(), "name", platform::toUtf8(field.name));
    hdf5::writeAttribute(dataset.get(), "type", typeOf<std::int32_t>(), &type, 1);
}

RouteFieldType readType(hid_t dataset) {
    std::int32_t number = rftUnknown;
    hdf5::readAttribute(dataset, "type", typeOf<std::int32_t>(), &number, 1);
    if (number < rftBoolean || number >= rftUnknown)
        throw std::runtime_error("there is no field type " + std::to_string(number));
    return static_cast<RouteFieldType>(number);
}

Field readField(hid_t group, std::string const& name) {
    hdf5::Handle const dataset = hdf5::openDataset(group, name);
    RouteFieldType const type = readType(dataset.get());
    hdf5::NumberType const numbers = numberTypes[type]();
    std::size_t const count = hdf5::countNumbers(dataset.get(), name, numbers);
    Field field{platform::fromUtf8(hdf5::readText(dataset.get(), "name")), type, {}, count};
    field.values.resize(count * valueSize(type));
    hdf5::readDataset(dataset.get(), name, numbers, field.values.data());
    return field;
}

}

void writeFields(hid_t file, FieldTable const& table) {
    hdf5::Handle const group = hdf5::createGroup(file, "fields");
    for (std::size_t place = 0; place < table.fields().size(); ++place)
        writeField(group.get(), datasetName(place), table.fields()[place]);
}

FieldTable readFields(hid_t file) {
    FieldTable table;
    hdf5::Handle const group = hdf5::openGroup(file, "fields");
    for (std::size_t place = 0; hdf5::hasLink(group.get(), datasetName(place)); ++place)
        table.add(readField(group.get(), datasetName(place)));
    return table;
}

}
