#include "tool/Lineage.h"

#include "tool/Kinds.h"

#include <algorithm>
#include <set>

namespace cubes::tool {

namespace {

constexpr short notSet = -1;
constexpr std::size_t partsOfCubes = 4;

Entry entryOf(ParentNumbers const& parent, Catalogue const& catalogue) {
    auto const& numbers = parent.key;
    bool const isResult =
        std::any_of(numbers.begin() + partsOfCubes, numbers.end(), [](short n) { return n != notSet; });
    auto const end = isResult ? numbers.end() : numbers.begin() + partsOfCubes;
    return {catalogue.cubeOf(parent.cube), Key(numbers.begin(), end)};
}

}

Lineage::Lineage(Catalogue const& catalogue) {
    for (auto const& kind : kinds())
        for (auto const& row : catalogue.derivedOf(kind)) {
            auto const parent = entryOf(row.parent, catalogue);
            parents_.emplace(row.entry, parent);
            children_[parent].push_back(row.entry);
        }
}

std::optional<Entry> Lineage::parentOf(Entry const& entry) const {
    auto const found = parents_.find(entry);
    return found == parents_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<Entry> Lineage::childrenOf(Entry const& entry) const {
    auto const found = children_.find(entry);
    return found == children_.end() ? std::vector<Entry>() : found->second;
}

std::vector<Entry> Lineage::ancestorsOf(Entry const& entry) const {
    std::vector<Entry> ancestors;
    std::set<Entry, EntryOrder> seen = {entry};
    for (auto up = parentOf(entry); up && seen.insert(*up).second; up = parentOf(*up)) ancestors.push_back(*up);
    std::reverse(ancestors.begin(), ancestors.end());
    return ancestors;
}

ParentNumbers numbersOf(Entry const& parent) {
    ParentNumbers numbers{parent.cube.number, ParentNumbers().key};
    std::copy(parent.key.begin(), parent.key.end(), numbers.key.begin());
    return numbers;
}

}
