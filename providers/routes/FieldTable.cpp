#include "FieldTable.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

namespace cubes::routes {

using namespace VL::Interface;

namespace {

template <typename Number>
double asDouble(std::byte const* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return static_cast<double>(number);
}

struct ValueType {
    std::size_t size;
    double (*read)(std::byte const*);
};

// By RouteFieldType.
constexpr ValueType valueTypes[] = {
    {1, asDouble<std::uint8_t>},
    {1, asDouble<std::uint8_t>},
    {2, asDouble<std::int16_t>},
    {4, asDouble<std::int32_t>},
    {4, asDouble<float>},
    {8, asDouble<double>},
};

bool isControl(char letter) {
    return static_cast<unsigned char>(letter) < ' ' || letter == '\x7f';
}

void requireName(std::string const& name) {
    if (name.empty()) throw std::invalid_argument("the field has no name");
    if (std::ranges::any_of(name, isControl)) throw std::invalid_argument("the field's name has a control character");
}

void requireTruth(Field const& field) {
    auto const isTruth = [](std::byte value) { return value <= std::byte{1}; };
    if (field.type == rftBoolean && !std::ranges::all_of(field.values, isTruth))
        throw std::invalid_argument("the boolean field " + field.name + " has values besides 0 and 1");
}

}

std::size_t valueSize(RouteFieldType type) {
    return type >= rftBoolean && type < rftUnknown ? valueTypes[type].size : 0;
}

RouteField Field::view() const {
    return {name.c_str(), type, values.data(), static_cast<std::int64_t>(count)};
}

double Field::value(std::size_t route) const {
    ValueType const& known = valueTypes[type];
    return known.read(values.data() + route * known.size);
}

Field const* FieldTable::find(std::string_view name) const {
    auto const found = std::ranges::find(fields_, name, &Field::name);
    return found == fields_.end() ? nullptr : &*found;
}

void FieldTable::add(RouteField const& field) {
    std::size_t const size = valueSize(field.type);
    if (size == 0) throw std::invalid_argument("unknown field type " + std::to_string(field.type));
    if (field.count < 0) throw std::invalid_argument("the number of values is negative");
    if (field.count > 0 && !field.values) throw std::invalid_argument("the values are missing");
    auto const count = static_cast<std::size_t>(field.count);
    if (count > std::numeric_limits<std::ptrdiff_t>::max() / size) throw std::length_error("too many values");
    auto const* const first = static_cast<std::byte const*>(field.values);
    add(Field{field.name ? field.name : "", field.type, {first, first + count * size}, count});
}

void FieldTable::add(Field field) {
    requireName(field.name);
    requireTruth(field);
    if (find(field.name)) throw std::invalid_argument("a field " + field.name + " exists already");
    if (!fields_.empty() && field.count != routes())
        throw std::invalid_argument("the field " + field.name + " has " + std::to_string(field.count) +
                                    " values, the others have " + std::to_string(routes()));
    fields_.push_back(std::move(field));
}

}
