#include "tool/Command.h"
#include "tool/Lineage.h"
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
            removeWithChildren(parseEntry(what_), surroundings, output);
        else if (isEntry(what_))
            removeEntry(parseEntry(what_), "removed", surroundings, output);
        else
            removeCube(parseCube(what_), surroundings, output);
    }

private:
    // Children are removed before their parents, and nothing is when one of them is in use.
    static void removeWithChildren(EntryWord const& word, Surroundings const& surroundings, Output& output) {
        auto catalogue = Catalogue::open(surroundings);
        auto const entries = derivedFrom(catalogue.entry(word), catalogue);
        auto const files = filesOf(entries, catalogue);
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) catalogue.remove(*entry);
        warnOfRemainingFiles(files);
        Record removed;
        removed.add("removed", "removed", entries.front().text());
        removed.add("entries", "entries", entries.size());
        output.show(removed);
    }

    static void removeCube(CubeWord const& word, Surroundings const& surroundings, Output& output) {
        auto catalogue = Catalogue::open(surroundings);
        auto const cube = catalogue.cube(word);
        auto const entries = catalogue.entriesOf(cube);
        auto const files = filesOf(entries, catalogue);
        catalogue.remove(cube);
        warnOfRemainingFiles(files);
        warnOfOrphans("an entry of " + cube.text(), orphansOf(entries, catalogue));
        Record removed;
        removed.add("removed", "removed", cube.text());
        removed.add("entries", "entries", entries.size());
        output.show(removed);
    }

    /// The files of the entries. Throws Refusal when an entry is in use.
    static std::vector<std::string> filesOf(std::vector<Entry> const& entries, Catalogue const& catalogue) {
        std::vector<std::string> files;
        for (auto const& entry : entries) {
            catalogue.refuseUse(entry);
            files.push_back(catalogue.path(entry));
        }
        return files;
    }

    std::string what_;
    bool withChildren_ = false;
};

}

std::unique_ptr<Command> makeRemove() {
    return std::make_unique<Remove>();
}

}
