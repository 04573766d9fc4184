#pragma once

#include <cubes/database/Value.h>

#include <optional>
#include <string>
#include <vector>

namespace cubes::matcubes {

/// The key of a four-key entry as it is stored: one-based parts.
struct EntryKey {
    short cubenr;
    short purpose;
    short mode;
    short time;
    short user;
};

/// The columns that identify an entry, in the order of valuesOf().
inline constexpr char const* keyColumns = "cubenr;purpose;mode;time;user";

/// The stored form of a caller's key: zero-based parts are raised by 1, the cube number never.
/// Nothing for a part that has no successor in 16 bits.
std::optional<EntryKey> storedKey(short cubenr, short p, short m, short t, short u, bool zeroBased);

std::vector<Rktable::Value> valuesOf(EntryKey const& key);

/// "[1,2,3,4]": the parts as people read them.
std::string displayKey(EntryKey const& key);

}
