#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Errors.h"

namespace cubes::tool {

namespace {

class List : public Command {
public:
    List() : Command("list", "List the cubes, fares and kinds of results of the project") {}

    void declare(Arguments) override {}
    bool onlyReads() const override { return true; }
    std::string task() const override { return "list the cubes"; }

    void run(Surroundings const& surroundings, Output& output) override {
        Entries const entries(surroundings);
        auto counts = entries.store().counts();
        Table table({{"number", "number"}, {"name", "name"}, {"entries", "entries"}});
        auto const cubes = entries.store().cubes();
        for (auto const& cube : cubes) table.add({cube.number, cube.name, counts[cube.number]});
        for (auto const& kind : EntryStore::kinds())
            if (counts[kind.number] > 0) table.add({kind.number, kind.name, counts[kind.number]});
        output.show(table);
        if (cubes.empty()) printNote("the project has no cubes; add one with: cubes add NAME");
    }
};

}

std::unique_ptr<Command> makeList() {
    return std::make_unique<List>();
}

}
