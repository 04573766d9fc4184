#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/commands/Removal.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class Clear : public Command {
public:
    Clear() : Command("clear", "Remove an entry, or the entries of a cube that are not in use, but not the cube") {}

    void declare(Arguments arguments) override {
        arguments.required("WHAT", what_, "CUBE or ENTRY; fare or a kind of results means all its entries");
    }

    std::string task() const override { return "clear " + what_; }

    void run(Surroundings const& surroundings, Output& output) override {
        if (isEntry(what_))
            removeEntry(parseEntry(what_), "cleared", surroundings, output);
        else
            clearCube(parseCube(what_), surroundings, output);
    }

private:
    static void clearCube(CubeWord const& word, Surroundings const& surroundings, Output& output) {
        auto catalogue = Catalogue::open(surroundings);
        auto const cube = catalogue.cube(word);
        auto const entries = catalogue.entriesOf(cube);
        std::vector<Entry> gone;
        std::vector<std::string> files;
        std::size_t kept = 0;
        for (auto const& entry : entries) {
            bool const stays = catalogue.isInUse(entry);
            kept += stays ? 1 : 0;
            auto const file = catalogue.path(entry);
            // Another program may have removed it meanwhile.
            if (stays || !catalogue.remove(entry)) continue;
            gone.push_back(entry);
            files.push_back(file);
        }
        warnOfRemainingFiles(files);
        warnOfOrphans("an entry of " + cube.text(), orphansOf(gone, catalogue));
        if (kept > 0) printWarning(fmt::format("entries in use were kept: {}", kept));
        Record cleared;
        cleared.add("cleared", "cleared", cube.text());
        cleared.add("entries", "entries", files.size());
        cleared.add("kept", "kept", kept);
        output.show(cleared);
    }

    std::string what_;
};

}

std::unique_ptr<Command> makeClear() {
    return std::make_unique<Clear>();
}

}
