#pragma once

#include "tool/Lineage.h"
#include "tool/Table.h"

#include <string>

namespace cubes::tool {

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
