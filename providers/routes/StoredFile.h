#pragma once

#include "host/hdf5/IndexRecord.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Route files as wholes: each is read at once, and created in memory and replaced atomically.
namespace cubes::routes {

/// The kind of a file: its attribute `format`, and the same in its index record.
struct FileKind {
    std::string_view format;
    hdf5::IndexRecord::Holds holds;
};

/// Purpose, mode, time, user, result, iteration.
using Key = std::array<std::int16_t, 6>;

/// The entry for which a file was written, as far as it was set.
struct Stamp {
    std::optional<std::int32_t> cubeType;
    std::optional<Key> key;

    bool operator==(Stamp const&) const = default;
};

/// The attributes and the record of a file.
struct FileRoot {
    /// Values that are not set are written as 0 and -1; in a file that was read, both are set.
    Stamp stamp;
    /// All ids are unknown in files without a record.
    hdf5::IndexRecord record;
};

/// Calls `read` with the opened file. Throws std::system_error when it cannot be opened, and std::runtime_error when
/// it is not a file of that kind or has an unknown version.
void readStoredFile(std::string const& path, FileKind kind,
    std::function<void(hdf5::GuardedFile const& file, FileRoot const& root)> const& read);
/// Calls `write` with an empty file, which then replaces the one at `path`. The record's size and kind are filled in.
void writeStoredFile(
    std::string const& path, FileKind kind, FileRoot const& root, std::function<void(hid_t file)> const& write);

}
