#pragma once

#include "tool/Catalogue.h"
#include "tool/Output.h"

#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace cubes::tool {

/// Some order, to find entries by.
struct EntryOrder {
    bool operator()(Entry const& a, Entry const& b) const {
        return std::tie(a.cube.number, a.key) < std::tie(b.cube.number, b.key);
    }
};

/// What the entry was derived from, what that was derived from and so on, the oldest first. Rows
/// that lead in a circle end it.
std::vector<Entry> ancestorsOf(Entry const& entry, Catalogue const& catalogue);

/// The entry and all that was derived from it, each after what it was derived from.
std::vector<Entry> derivedFrom(Entry const& entry, Catalogue const& catalogue);

/// Which results were derived from which entries, of all results, read once.
class Lineage {
public:
    explicit Lineage(Catalogue const& catalogue);

    /// In the order of their keys, kind by kind.
    std::vector<Entry> childrenOf(Entry const& entry) const;

private:
    std::map<Entry, std::vector<Entry>, EntryOrder> children_;
};

/// An entry and what was derived from it, as far as it is shown.
struct Branch {
    Entry entry;
    bool isThere = true;
    /// Whether it is the entry that was asked for.
    bool isAsked = false;
    std::vector<Branch> children;
};

/// The entry's line of ancestors, from the oldest, and everything derived from the entry.
Branch lineageOf(Entry const& entry, Lineage const& lineage, Catalogue const& catalogue);

/// One line an entry, each under the one it was derived from.
std::string asText(Branch const& root);
/// A graph for Graphviz.
std::string asDot(Branch const& root);
Json asJson(Branch const& root);

}
