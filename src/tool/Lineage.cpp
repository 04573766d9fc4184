#include "tool/Lineage.h"

#include "tool/Entries.h"
#include "tool/Errors.h"
#include "tool/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>

namespace cubes::tool {

namespace {

// No model goes so deep; rows of a database may.
constexpr int mostGenerations = 1000;

using Descendants = std::span<Lineage::Descendant const>;

Branch branchOf(EntryKey const& key, EntryStore const& store) {
    return {key, store.text(key), store.find(key).has_value(), false, {}};
}

bool isAncestor(EntryKey const& key, Lineage const& lineage) {
    return std::ranges::find(lineage.ancestors, key) != lineage.ancestors.end();
}

// Takes the descendants of a generation and what follows each from the front of the list.
std::vector<Branch> takeBranches(Descendants& ahead, int generation, Lineage const& lineage, EntryStore const& store) {
    std::vector<Branch> branches;
    while (!ahead.empty() && ahead.front().generation == generation) {
        auto const key = ahead.front().key;
        if (generation > mostGenerations)
            throw Failure(fmt::format("the lineage is deeper than {} generations", mostGenerations));
        ahead = ahead.subspan(1);
        auto children = takeBranches(ahead, generation + 1, lineage, store);
        if (isAncestor(key, lineage)) continue;
        branches.push_back(branchOf(key, store));
        branches.back().children = std::move(children);
    }
    std::ranges::sort(branches, isListedBefore, &Branch::key);
    return branches;
}

void addText(Branch const& branch, std::size_t depth, std::string& text) {
    text += branch.isAsked ? "* " : "  ";
    text += std::string(2 * depth, ' ') + escaped(branch.text) + (branch.isThere ? "" : "  (missing)") + "\n";
    for (auto const& child : branch.children) addText(child, depth + 1, text);
}

std::string quoted(std::string const& word) {
    std::string text = "\"";
    for (char const c : escaped(word)) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + "\"";
}

void addDot(Branch const& branch, std::string& text) {
    std::string const name = quoted(branch.text);
    std::string style;
    if (branch.isAsked) style = " [style=bold]";
    if (!branch.isThere) style = " [style=dashed]";
    text += "  " + name + style + ";\n";
    for (auto const& child : branch.children) {
        addDot(child, text);
        text += "  " + name + " -> " + quoted(child.text) + ";\n";
    }
}

}

Branch lineageOf(EntryKey const& entry, EntryStore const& store) {
    auto const lineage = store.lineage(entry);
    Descendants ahead = lineage.descendants;
    Branch root = branchOf(entry, store);
    root.isAsked = true;
    root.children = takeBranches(ahead, 1, lineage, store);
    for (auto const& ancestor : lineage.ancestors) {
        Branch parent = branchOf(ancestor, store);
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
    return {{"entry", root.text}, {"isThere", root.isThere}, {"isAsked", root.isAsked}, {"children", children}};
}

}
