#include "tool/Catalogue.h"
#include "tool/Messages.h"
#include "tool/commands/Commands.h"

#include <CLI/CLI.hpp>

#include <map>

namespace cubes::tool {

namespace {

class List : public Command {
public:
    List() : Command("list", "List the cubes of the project") {}

    void declare(CLI::App&) override {}
    std::string task() const override { return "list the cubes"; }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const catalogue = Catalogue::open(surroundings);
        std::map<short, std::size_t> counts;
        for (auto const& entry : catalogue.entries()) ++counts[entry.cube.number];
        Table table({{"number", "number"}, {"name", "name"}, {"entries", "entries"}});
        auto const cubes = catalogue.cubes();
        for (auto const& cube : cubes) table.add({cube.number, cube.name, counts[cube.number]});
        output.show(table);
        if (cubes.empty()) tellNote("the project has no cubes yet; cubes add or cubes import make one");
    }
};

}

std::unique_ptr<Command> makeList() {
    return std::make_unique<List>();
}

}
