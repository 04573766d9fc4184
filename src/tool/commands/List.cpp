#include "tool/Catalogue.h"
#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Kinds.h"

#include <map>

namespace cubes::tool {

namespace {

class List : public Command {
public:
    List() : Command("list", "List the cubes, fares and kinds of results of the project") {}

    void declare(Arguments) override {}
    std::string task() const override { return "list the cubes"; }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const catalogue = Catalogue::open(surroundings);
        // Fares and results are counted by the number of their kind.
        std::map<short, std::size_t> counts;
        for (auto const& entry : catalogue.entries()) ++counts[entry.cube.number];
        Table table({{"number", "number"}, {"name", "name"}, {"entries", "entries"}});
        auto const cubes = catalogue.cubes();
        for (auto const& cube : cubes) table.add({cube.number, cube.name, counts[cube.number]});
        for (auto const& kind : kinds())
            if (counts[kind.number] > 0) table.add({kind.number, kind.word, counts[kind.number]});
        output.show(table);
        if (cubes.empty()) printNote("the project has no cubes; add one with: cubes add NAME");
    }
};

}

std::unique_ptr<Command> makeList() {
    return std::make_unique<List>();
}

}
