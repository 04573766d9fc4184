#include "tool/commands/Removal.h"

namespace cubes::tool {

namespace {

class Remove : public Command {
public:
    Remove() : Command("remove", "Remove an entry, or a cube with all its entries") {}

    void declare(Arguments arguments) override {
        arguments.required("WHAT", what_, "CUBE or ENTRY; fare or a kind of results means all its entries");
        arguments.flag("--with-children", withChildren_, "Also remove everything that was derived from the entry");
    }

    std::string task() const override { return "remove " + what_; }

    void run(Surroundings const& surroundings, Output& output) override {
        if (withChildren_)
            removeWithChildren(surroundings, output);
        else if (isEntry(what_))
            removeEntry(what_, "removed", surroundings, output);
        else
            removeCube(surroundings, output);
    }

private:
    void removeWithChildren(Surroundings const& surroundings, Output& output) const {
        Entries const entries(surroundings, {what_});
        auto const entry = entries.find(what_);
        std::vector<EntryInfo> removed = {entry};
        for (auto const& descendant : entries.store().lineage(entry.key).descendants)
            if (auto found = entries.store().find(descendant.key)) removed.push_back(*std::move(found));
        auto const count = entries.store().removeAll(keysOf(removed));
        warnOfOrphans(entry.text, removed, entries.store());
        show(entry.text, count, output);
    }

    void removeCube(Surroundings const& surroundings, Output& output) const {
        Entries const entries(surroundings);
        auto const cube = entries.cube(what_);
        auto const name = entries.nameOf(cube);
        std::vector<EntryInfo> removed;
        for (auto const& entry : entries.store().entries({.cube = std::to_string(cube.number)}))
            removed.push_back(entry);
        auto const count = isKind(cube) ? entries.store().removeAll({.cube = std::to_string(cube.number)})
                                        : entries.store().removeCube(cube.number);
        warnOfOrphans("an entry of " + name, removed, entries.store());
        show(name, count, output);
    }

    static void show(std::string const& name, std::size_t count, Output& output) {
        Record removed;
        removed.add("removed", "removed", name);
        removed.add("entries", "entries", count);
        output.show(removed);
    }

    std::string what_;
    bool withChildren_ = false;
};

}

std::unique_ptr<Command> makeRemove() {
    return std::make_unique<Remove>();
}

}
