#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Errors.h"

#include <fmt/format.h>

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
        Entries const entries(surroundings, parent_.empty() ? std::vector{entry_} : std::vector{entry_, parent_});
        auto const entry = entries.find(entry_);
        if (!entry.key.isResult()) throw Refusal("only results have parents");
        if (none_) entries.store().setParent(entry.key, std::nullopt);
        if (!parent_.empty()) entries.store().setParent(entry.key, entries.find(parent_).key);
        show(entries.store(), entry, output);
    }

private:
    static void show(EntryStore const& store, EntryInfo const& entry, Output& output) {
        auto const parent = store.parent(entry.key);
        Record record;
        record.add("entry", "entry", entry.text);
        record.add("parent", "parent", parent ? Json(store.text(*parent)) : Json());
        record.add("isThere", "", parent ? Json(store.find(*parent).has_value()) : Json());
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
