#include "tool/Lineage.h"

#include "tool/Kinds.h"

#include <algorithm>
#include <set>

namespace cubes::tool {

std::vector<Entry> ancestorsOf(Entry const& entry, Catalogue const& catalogue) {
    std::vector<Entry> ancestors;
    std::set<Entry, EntryOrder> seen = {entry};
    for (auto up = catalogue.parentOf(entry); up && seen.insert(*up).second; up = catalogue.parentOf(*up))
        ancestors.push_back(*up);
    std::reverse(ancestors.begin(), ancestors.end());
    return ancestors;
}

std::vector<Entry> derivedFrom(Entry const& entry, Catalogue const& catalogue) {
    Lineage const lineage(catalogue);
    std::vector<Entry> found = {entry};
    std::set<Entry, EntryOrder> seen = {entry};
    for (std::size_t i = 0; i < found.size(); ++i)
        for (auto const& child : lineage.childrenOf(found[i]))
            if (seen.insert(child).second) found.push_back(child);
    return found;
}

Lineage::Lineage(Catalogue const& catalogue) {
    for (auto const& kind : kinds())
        for (auto const& row : catalogue.derivedOf(kind)) children_[catalogue.entryOf(row.parent)].push_back(row.entry);
}

std::vector<Entry> Lineage::childrenOf(Entry const& entry) const {
    auto const found = children_.find(entry);
    return found == children_.end() ? std::vector<Entry>() : found->second;
}

}
