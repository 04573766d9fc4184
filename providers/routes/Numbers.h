#pragma once

#include "host/hdf5/GuardedFile.h"
#include "host/hdf5/Hdf5.h"

#include <cstdint>
#include <string>
#include <vector>

/// Lists of numbers as one-dimensional datasets, and small attributes.
namespace cubes::routes {

using hdf5::NumberType;
using hdf5::typeOf;

/// Whether bytes of equal weight are stored together before compression. That makes ascending and real numbers smaller,
/// and repeated sequences, such as the links of neighbouring routes, larger.
enum class Shuffle { no, yes };

/// Writes `count` numbers as a dataset, compressed and with one checksum per chunk.
hdf5::Handle writeDataset(hid_t parent, std::string const& name, NumberType type, void const* numbers,
    std::size_t count, Shuffle shuffle = Shuffle::yes);
/// A dataset that is a list of numbers of some type, and no longer than a file of this size can hold.
class StoredNumbers {
public:
    /// Throws std::runtime_error when it is something else, or when its numbers do not fit `type`.
    StoredNumbers(hdf5::GuardedFile const& file, std::string const& path, NumberType type);

    std::size_t count() const noexcept { return count_; }
    /// REQUIRES: `numbers` has room for all.
    void read(void* numbers) const;

private:
    hdf5::GuardedFile const& file_;
    std::string path_;
    NumberType type_;
    hdf5::Dataset dataset_;
    std::size_t count_ = 0;
};

template <typename Number>
void writeNumbers(hid_t parent, std::string const& name, std::vector<Number> const& numbers) {
    writeDataset(parent, name, typeOf<Number>(), numbers.data(), numbers.size());
}

template <typename Number>
std::vector<Number> readNumbers(hdf5::GuardedFile const& file, std::string const& path) {
    StoredNumbers const stored(file, path, typeOf<Number>());
    std::vector<Number> numbers(stored.count());
    stored.read(numbers.data());
    return numbers;
}

/// Writes an attribute of `count` numbers.
void writeAttribute(hid_t object, char const* name, NumberType type, void const* numbers, std::size_t count);
/// Reads whole numbers from an attribute of the root, or of a dataset. Throws std::runtime_error when it is missing or
/// has another type or size.
std::vector<std::int64_t> readAttribute(
    hdf5::GuardedFile const& file, std::string const& object, char const* name, std::size_t count);
/// A text of fixed length; throws when it is missing or something else.
std::string textAttribute(hdf5::GuardedFile const& file, std::string const& object, char const* name);

}
