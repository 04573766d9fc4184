#include "matcubes/EntryKey.h"

#include <algorithm>
#include <limits>

namespace cubes::matcubes {

std::optional<EntryKey> storedKey(short cubenr, short p, short m, short t, short u, bool zeroBased) {
    int const shift = zeroBased ? 1 : 0;
    if (std::max({p, m, t, u}) > std::numeric_limits<short>::max() - shift) return std::nullopt;
    auto const stored = [shift](short part) { return static_cast<short>(part + shift); };
    return EntryKey{cubenr, stored(p), stored(m), stored(t), stored(u)};
}

std::vector<Rktable::Value> valuesOf(EntryKey const& key) {
    return {key.cubenr, key.purpose, key.mode, key.time, key.user};
}

std::string displayKey(EntryKey const& key) {
    return "[" + std::to_string(key.purpose) + "," + std::to_string(key.mode) + "," + std::to_string(key.time) + "," +
           std::to_string(key.user) + "]";
}

}
