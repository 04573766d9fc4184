#pragma once

#include <array>
#include <optional>
#include <string>

namespace cubes::tool {

/// A cube as it was written on the command line: by name, or by number when it is made of digits.
struct CubeWord {
    std::string text;
    std::optional<short> number;
};

/// Purpose, mode, time and user, one-based.
using Key = std::array<short, 4>;

/// "1/2/3/4".
std::string textOf(Key const& key);

/// An entry as it was written: CUBE/purpose/mode/time/user.
struct EntryWord {
    CubeWord cube;
    Key key;
};

/// Whether the text is made as an entry, not as a cube: at least four slashes.
bool isEntry(std::string const& text);
/// Both throw UsageError for a text that is no cube or entry, Refusal for a number that no key can
/// hold; each names the part that is wrong. The key is split off from the right, so that the
/// cube's name may hold slashes.
CubeWord parseCube(std::string const& text);
EntryWord parseEntry(std::string const& text);

}
