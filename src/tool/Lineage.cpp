#include "tool/Lineage.h"

#include "tool/Errors.h"
#include "tool/Kinds.h"

#include <fmt/format.h>

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

namespace {

// No model goes so deep; rows of a database may.
constexpr std::size_t mostGenerations = 1000;

class Growth {
public:
    Growth(Lineage const& lineage, Catalogue const& catalogue, std::vector<Entry> const& ancestors)
        : lineage_(lineage), catalogue_(catalogue), shown_(ancestors.begin(), ancestors.end()) {}

    // Each entry is shown once, so that rows that lead in a circle end.
    Branch branch(Entry const& entry, std::size_t generation) {
        if (generation > mostGenerations)
            throw Failure(fmt::format("the lineage is deeper than {} generations", mostGenerations));
        shown_.insert(entry);
        Branch grown{entry, catalogue_.has(entry), false, {}};
        for (auto const& child : lineage_.childrenOf(entry))
            if (!shown_.contains(child)) grown.children.push_back(branch(child, generation + 1));
        return grown;
    }

private:
    Lineage const& lineage_;
    Catalogue const& catalogue_;
    std::set<Entry, EntryOrder> shown_;
};

void addText(Branch const& branch, std::size_t depth, std::string& text) {
    text += branch.isAsked ? "* " : "  ";
    text += std::string(2 * depth, ' ') + branch.entry.text() + (branch.isThere ? "" : "  (missing)") + "\n";
    for (auto const& child : branch.children) addText(child, depth + 1, text);
}

std::string quoted(std::string const& word) {
    std::string text = "\"";
    for (char const c : word) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + "\"";
}

void addDot(Branch const& branch, std::string& text) {
    std::string const name = quoted(branch.entry.text());
    std::string style;
    if (branch.isAsked) style = " [style=bold]";
    if (!branch.isThere) style = " [style=dashed]";
    text += "  " + name + style + ";\n";
    for (auto const& child : branch.children) {
        addDot(child, text);
        text += "  " + name + " -> " + quoted(child.entry.text()) + ";\n";
    }
}

}

Branch lineageOf(Entry const& entry, Lineage const& lineage, Catalogue const& catalogue) {
    auto ancestors = ancestorsOf(entry, catalogue);
    Branch root = Growth(lineage, catalogue, ancestors).branch(entry, 0);
    root.isAsked = true;
    for (; !ancestors.empty(); ancestors.pop_back()) {
        Branch parent{ancestors.back(), catalogue.has(ancestors.back()), false, {}};
        parent.children.push_back(std::move(root));
        root = std::move(parent);
    }
    return root;
}

std::string asText(Branch const& root) {
    std::string text;
    addText(root, 0, text);
    return text;
}

std::string asDot(Branch const& root) {
    std::string text = "digraph lineage {\n  node [shape=box];\n";
    addDot(root, text);
    return text + "}\n";
}

Json asJson(Branch const& root) {
    Json children = Json::array();
    for (auto const& child : root.children) children.push_back(asJson(child));
    return {{"entry", root.entry.text()}, {"isThere", root.isThere}, {"isAsked", root.isAsked}, {"children", children}};
}

}
