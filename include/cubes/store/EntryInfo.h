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

/// What the row of an entry says. A value; the row may change after it was read.
struct EntryInfo {
    EntryKey key;
    /// As users write it: "Trips/1/1/1/1".
    std::string text;
    /// The file name as the row stores it.
    std::string storedName;
    /// The full path of the file, which need not be there; empty when the stored name leads out of
    /// the project's directory.
    std::string file;
    /// The usage counter.
    long users = 0;
    /// The entry that a result was derived from, which need not be there.
    std::optional<EntryKey> parent;
};

/// Which entries are meant: all that agree with every part that is set.
struct EntrySelection {
    /// The name or number of a cube, or the word for the fares or a kind of results; empty: all.
    std::string cube = {};
    std::optional<short> purpose = {};
    std::optional<short> mode = {};
    std::optional<short> time = {};
    std::optional<short> user = {};
    /// Entries of cubes have no result and iteration and agree with none.
    std::optional<short> result = {};
    std::optional<short> iteration = {};
};

/// Where an entry stands among those that it was derived from and that were derived from it. An
/// entry named as a parent need not be there. Rows that lead in a circle end it.
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
