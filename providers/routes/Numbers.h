#pragma once

#include "host/hdf5/Hdf5.h"

#include <cstdint>
#include <string>
#include <vector>

/// Lists of numbers as one-dimensional datasets, and small attributes.
namespace cubes::routes {

/// A type of numbers, in memory and in a file (always little-endian).
struct NumberType {
    hid_t memory;
    hid_t file;
};

template <typename Number>
NumberType typeOf();
template <>
NumberType typeOf<std::uint8_t>();
template <>
NumberType typeOf<std::int16_t>();
template <>
NumberType typeOf<std::uint16_t>();
template <>
NumberType typeOf<std::int32_t>();
template <>
NumberType typeOf<std::uint32_t>();
template <>
NumberType typeOf<std::uint64_t>();
template <>
NumberType typeOf<float>();
template <>
NumberType typeOf<double>();

/// Whether bytes of equal weight are stored together before compression. That makes ascending and real numbers smaller,
/// and repeated sequences, such as the links of neighbouring routes, larger.
enum class Shuffle { no, yes };

/// Writes `count` numbers as a dataset, compressed and with one checksum per chunk.
hdf5::Handle writeDataset(hid_t parent, std::string const& name, NumberType type, void const* numbers,
    std::size_t count, Shuffle shuffle = Shuffle::yes);
/// The number of elements of a dataset. Throws unless it is a list of numbers that fit `type` and is not larger than a
/// file of this size can hold.
std::size_t countNumbers(hid_t dataset, std::string const& name, NumberType type);
void readDataset(hid_t dataset, std::string const& name, NumberType type, void* numbers);

template <typename Number>
void writeNumbers(hid_t parent, std::string const& name, std::vector<Number> const& numbers) {
    writeDataset(parent, name, typeOf<Number>(), numbers.data(), numbers.size());
}

template <typename Number>
std::vector<Number> readNumbers(hid_t parent, std::string const& name) {
    hdf5::Handle const dataset = hdf5::openDataset(parent, name);
    std::vector<Number> numbers(countNumbers(dataset.get(), name, typeOf<Number>()));
    readDataset(dataset.get(), name, typeOf<Number>(), numbers.data());
    return numbers;
}

/// Attributes of `count` numbers. Writing replaces an existing one; reading throws when it is missing or has another
/// type or size.
void writeAttribute(hid_t object, char const* name, NumberType type, void const* numbers, std::size_t count);
void readAttribute(hid_t object, char const* name, NumberType type, void* numbers, std::size_t count);
/// A text of fixed length; throws when it is missing or something else.
std::string textAttribute(hid_t object, char const* name);

}
