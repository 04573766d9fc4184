#include "tool/Catalogue.h"
#include "tool/Command.h"
#include "tool/Errors.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class Add : public Command {
public:
    Add() : Command("add", "Add a cube") {}

    void declare(Arguments arguments) override {
        arguments.required("NAME", name_, "Name of the cube; digits alone are read as a number");
    }

    std::string task() const override { return fmt::format("add the cube \"{}\"", name_); }

    void run(Surroundings const& surroundings, Output& output) override {
        if (parseCube(name_).kind)
            throw Refusal("the name is reserved for fares or a kind of results; choose another one");
        if (parseCube(name_).number)
            throw Refusal("a name of digits would be read as a cube number; choose another one");
        if (!isName(name_))
            throw Refusal("a name that begins with a kind of results would be read as a result; choose another one");
        auto catalogue = Catalogue::open(surroundings);
        if (catalogue.has(parseCube(name_))) throw Refusal("it already exists");
        auto const cube = catalogue.add(name_);
        Record added;
        added.add("number", "number", cube.number);
        added.add("name", "name", cube.name);
        output.show(added);
    }

private:
    std::string name_;
};

}

std::unique_ptr<Command> makeAdd() {
    return std::make_unique<Add>();
}

}
