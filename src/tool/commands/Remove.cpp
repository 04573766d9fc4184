#include "tool/commands/Commands.h"
#include "tool/commands/Removal.h"

namespace cubes::tool {

namespace {

class Remove : public Command {
public:
    Remove() : Command("remove", "Remove an entry, or a cube with all its entries") {}

    void declare(Arguments arguments) override {
        arguments.required("WHAT", what_, "CUBE, or ENTRY; fares or a kind of results stand for all their entries");
    }

    std::string task() const override { return "remove " + what_; }

    void run(Surroundings const& surroundings, Output& output) override {
        if (isEntry(what_))
            removeEntry(parseEntry(what_), "removed", surroundings, output);
        else
            removeCube(parseCube(what_), surroundings, output);
    }

private:
    static void removeCube(CubeWord const& word, Surroundings const& surroundings, Output& output) {
        auto catalogue = Catalogue::open(surroundings);
        auto const cube = catalogue.cube(word);
        auto const entries = catalogue.entriesOf(cube);
        auto const files = filesOf(entries, catalogue);
        catalogue.remove(cube);
        tellOfFilesThatStayed(files);
        tellOfOrphans("an entry of " + cube.text(), orphansOf(entries, catalogue));
        Record removed;
        removed.add("removed", "removed", cube.text());
        removed.add("entries", "entries", entries.size());
        output.show(removed);
    }

    /// The entries' files; refuses when an entry is in use.
    static std::vector<std::string> filesOf(std::vector<Entry> const& entries, Catalogue const& catalogue) {
        std::vector<std::string> files;
        for (auto const& entry : entries) {
            catalogue.refuseUse(entry);
            files.push_back(catalogue.path(entry));
        }
        return files;
    }

    std::string what_;
};

}

std::unique_ptr<Command> makeRemove() {
    return std::make_unique<Remove>();
}

}
