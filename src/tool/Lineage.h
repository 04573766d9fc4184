#pragma once

#include "tool/Catalogue.h"

#include <map>
#include <optional>
#include <tuple>
#include <vector>

namespace cubes::tool {

/// Some order, to find entries by.
struct EntryOrder {
    bool operator()(Entry const& a, Entry const& b) const {
        return std::tie(a.cube.number, a.key) < std::tie(b.cube.number, b.key);
    }
};

/// Which results were derived from which entries, read once. A parent that is gone is told like
/// any other: rows keep its key.
class Lineage {
public:
    explicit Lineage(Catalogue const& catalogue);

    std::optional<Entry> parentOf(Entry const& entry) const;
    /// In the order of their keys, kind by kind.
    std::vector<Entry> childrenOf(Entry const& entry) const;
    /// The oldest first, without the entry itself. A row that makes an entry its own ancestor ends it.
    std::vector<Entry> ancestorsOf(Entry const& entry) const;

private:
    std::map<Entry, Entry, EntryOrder> parents_;
    std::map<Entry, std::vector<Entry>, EntryOrder> children_;
};

/// The numbers that the row of a child of this entry holds.
ParentNumbers numbersOf(Entry const& parent);

}
