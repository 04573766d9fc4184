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
            removeEntry(what_, "cleared", surroundings, output);
        else
            clearCube(surroundings, output);
    }

private:
    void clearCube(Surroundings const& surroundings, Output& output) const {
        Entries const entries(surroundings);
        auto const cube = entries.cube(what_);
        std::vector<EntryInfo> cleared;
        std::size_t kept = 0;
        for (auto const& entry : entries.store().entries({.cube = std::to_string(cube.number)})) {
            if (entry.users == 0)
                cleared.push_back(entry);
            else
                ++kept;
        }
        stopIfInterrupted();
        auto const count = entries.store().removeAll(keysOf(cleared));
        warnOfOrphans("an entry of " + entries.nameOf(cube), cleared, entries.store());
        if (kept > 0) printWarning(fmt::format("entries in use were kept: {}", kept));
        Record done;
        done.add("cleared", "cleared", entries.nameOf(cube));
        done.add("entries", "entries", count);
        done.add("kept", "kept", kept);
        output.show(done);
    }

    std::string what_;
};

}

std::unique_ptr<Command> makeClear() {
    return std::make_unique<Clear>();
}

}
