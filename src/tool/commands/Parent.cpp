#include "tool/Catalogue.h"
#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Lineage.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

class Parent : public Command {
public:
    Parent() : Command("parent", "Print or set what a result was derived from") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The result");
        auto const parent = arguments.optional("PARENT", parent_, "The entry it was derived from; default: print it");
        arguments.flag("--none", none_, "Remove its parent").without(parent);
    }

    std::string task() const override {
        return fmt::format("{} the parent of {}", parent_.empty() && !none_ ? "print" : "set", entry_);
    }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const word = parseEntry(entry_);
        auto catalogue = Catalogue::open(surroundings);
        auto const entry = catalogue.entry(word);
        if (!entry.cube.isOfResults()) throw Refusal("only results have parents");
        if (none_) catalogue.setParent(entry, {});
        if (!parent_.empty()) set(catalogue, entry, catalogue.entry(parseEntry(parent_)));
        show(catalogue, entry, output);
    }

private:
    static void set(Catalogue& catalogue, Entry const& entry, Entry const& parent) {
        if (parent == entry) throw Refusal("an entry cannot be its own parent");
        auto const ancestors = ancestorsOf(parent, catalogue);
        if (std::find(ancestors.begin(), ancestors.end(), entry) != ancestors.end())
            throw Refusal(fmt::format("{} was derived from it", parent.text()));
        catalogue.setParent(entry, numbersOf(parent));
    }

    static void show(Catalogue const& catalogue, Entry const& entry, Output& output) {
        auto const parent = catalogue.parentOf(entry);
        Record record;
        record.add("entry", "entry", entry.text());
        record.add("parent", "parent", parent ? Json(parent->text()) : Json());
        record.add("isThere", "", parent ? Json(catalogue.has(*parent)) : Json());
        output.show(record);
    }

    std::string entry_;
    std::string parent_;
    bool none_ = false;
};

}

std::unique_ptr<Command> makeParent() {
    return std::make_unique<Parent>();
}

}
