#pragma once

#include "tool/Output.h"

#include <cubes/store/EntryStore.h>

#include <string>
#include <vector>

namespace cubes::tool {

/// An entry and what was derived from it, as far as it is shown.
struct Branch {
    EntryKey key;
    std::string text;
    bool isThere = true;
    /// Whether it is the entry that was asked for.
    bool isAsked = false;
    std::vector<Branch> children;
};

/// The entry's line of ancestors, from the oldest, and everything derived from the entry. Each entry
/// appears once, also when parents form a circle. Throws Failure for a lineage too deep.
Branch lineageOf(EntryKey const& entry, EntryStore const& store);

/// One line per entry, indented below its parent.
std::string asText(Branch const& root);
/// A graph for Graphviz.
std::string asDot(Branch const& root);
Json asJson(Branch const& root);

}
