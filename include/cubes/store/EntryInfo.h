#pragma once

#include <cubes/store/EntryKey.h>

#include <optional>
#include <string>
#include <vector>

namespace cubes {

/// A cube of the register, the fares, or a kind of results.
struct CubeInfo {
    short number = 0;
    /// The name in the register; of fares and results the word that stands for them: "skim".
    std::string name;
    /// Whether its entries are results, with result and iteration in their keys.
    bool holdsResults = false;
    /// Whether its entries are files of routes or of their data, and not matrices.
    bool holdsRoutes = false;
};

/// The row of an entry as it was read. A value: later changes to the row do not affect it.
struct EntryInfo {
    EntryKey key;
    /// As users write it: "Trips/1/1/1/1".
    std::string text;
    /// The file name as the row stores it.
    std::string storedName;
    /// The full path of the file, which may be missing; empty when the stored name leads out of the
    /// project's directory.
    std::string file;
    /// The usage counter.
    long users = 0;
    /// The entry that a result was derived from, which may be missing.
    std::optional<EntryKey> parent;
};

/// Selects the entries that match every part that is set.
struct EntrySelection {
    /// The word of the fares or of a kind of results, or the number or name of a cube; empty: all. A
    /// number need not be registered.
    std::string cube = {};
    /// The number of a cube or kind, in place of `cube`: unlike a name it has one meaning only.
    std::optional<short> cubeNumber = {};
    std::optional<short> purpose = {};
    std::optional<short> mode = {};
    std::optional<short> time = {};
    std::optional<short> user = {};
    /// Entries of cubes have no result and iteration and match none.
    std::optional<short> result = {};
    std::optional<short> iteration = {};
};

/// The entries that an entry was derived from, and those derived from it. Parents may be missing.
/// Each entry is listed once, also when the rows form a cycle.
struct Lineage {
    /// One entry derived from another, so many generations below the entry that was asked for.
    struct Descendant {
        EntryKey key;
        int generation = 1;
    };

    /// The parent, its parent and so on.
    std::vector<EntryKey> ancestors;
    /// Each followed by its own descendants; children in the order of their keys.
    std::vector<Descendant> descendants;
};

}
