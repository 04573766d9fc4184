#include "tool/Catalogue.h"
#include "tool/Kinds.h"
#include "tool/Messages.h"
#include "tool/commands/Commands.h"

#include <map>

namespace cubes::tool {

namespace {

class List : public Command {
public:
    List() : Command("list", "List the cubes, the fares and the kinds of results of the project") {}

    void declare(Arguments) override {}
    std::string task() const override { return "list the cubes"; }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const catalogue = Catalogue::open(surroundings);
        // Fares and results of a kind are counted under its number.
        std::map<short, std::size_t> counts;
        for (auto const& entry : catalogue.entries()) ++counts[entry.cube.number];
        Table table({{"number", "number"}, {"name", "name"}, {"entries", "entries"}});
        auto const cubes = catalogue.cubes();
        for (auto const& cube : cubes) table.add({cube.number, cube.name, counts[cube.number]});
        for (auto const& kind : kinds())
            if (counts[kind.number] > 0) table.add({kind.number, kind.word, counts[kind.number]});
        output.show(table);
        if (cubes.empty()) tellNote("the project has no cubes yet; cubes add or cubes import make one");
    }
};

}

std::unique_ptr<Command> makeList() {
    return std::make_unique<List>();
}

}
