#pragma once

#include "Hdf5.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cubes::routes {

/// Purpose, mode, time, user, result, iteration.
using Key = std::array<std::int16_t, 6>;

/// Which entry a file was written for. What was never said is kept from the file.
struct Stamp {
    std::optional<std::int32_t> cubeType;
    std::optional<Key> key;

    bool operator==(Stamp const&) const = default;
};

/// The attributes at the root of every file of ours: what kind of file it is, and its stamp. What is
/// missing in the stamp is written as 0 and -1.
void writeRoot(hid_t file, std::string_view kind, Stamp const& stamp);
void writeStamp(hid_t file, Stamp const& stamp);
/// Throws when the file is not of that kind, or of a version that we do not know.
Stamp readRoot(hid_t file, std::string_view kind);

}
