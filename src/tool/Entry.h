#pragma once

#include <optional>
#include <string>
#include <vector>

namespace cubes::tool {

struct Kind;

/// A cube as it was written on the command line: by name, by number when it is made of digits, or
/// the word for a kind.
struct CubeWord {
    std::string text;
    std::optional<short> number;
    /// Null for a cube of the register.
    Kind const* kind = nullptr;
};

/// Purpose, mode, time and user, one-based; of a result also result and iteration.
using Key = std::vector<short>;

/// "1/2/3/4".
std::string textOf(Key const& key);

/// An entry as it was written: CUBE/purpose/mode/time/user, with the word for fares in place of the
/// cube, or with the word for a kind of results KIND/purpose/mode/time/user/result/iteration.
struct EntryWord {
    CubeWord cube;
    Key key;

    std::string text() const { return cube.text + "/" + textOf(key); }
};

/// A cube of the register, the fares, or the results of a kind.
struct Cube {
    short number = 0;
    std::string name;
    /// Null for a cube of the register.
    Kind const* kind = nullptr;

    bool isOfResults() const;
    /// Whether its entries are files of routes, and no matrices.
    bool holdsRoutes() const;
    /// The number of parts that the keys of its entries have.
    std::size_t keyLength() const;
    /// Its name, or its number where the name would not be read as that of the cube.
    std::string text() const;
};

/// A place for a matrix: a cube and a key.
struct Entry {
    Cube cube;
    Key key;

    /// "Base/1/2/3/4", "skim/1/2/3/4/1/1".
    std::string text() const { return cube.text() + "/" + textOf(key); }
    friend bool operator==(Entry const& a, Entry const& b) { return a.cube.number == b.cube.number && a.key == b.key; }
};

/// Whether a cube of that name is found by it: it is no number, and does not begin like a kind's entry.
bool isName(std::string const& text);
/// Whether the text is made as an entry, not as a cube: at least four slashes.
bool isEntry(std::string const& text);
/// Both throw UsageError for a text that is no cube or entry, Refusal for a number that no key can
/// hold; each names the part that is wrong. The key is split off from the right, so that the
/// cube's name may hold slashes.
CubeWord parseCube(std::string const& text);
EntryWord parseEntry(std::string const& text);

}
