#include "tool/Catalogue.h"
#include "tool/Errors.h"
#include "tool/commands/Commands.h"

namespace cubes::tool {

namespace {

class Add : public Command {
public:
    Add() : Command("add", "Add a cube") {}

    void declare(Arguments arguments) override {
        arguments.required("NAME", name_, "Name of the cube; not of digits alone, these are read as a number");
    }

    std::string task() const override { return "add the cube " + name_; }

    void run(Surroundings const& surroundings, Output& output) override {
        if (parseCube(name_).kind) throw Refusal("the word stands for fares or a kind of results");
        if (parseCube(name_).number) throw Refusal("a name of digits alone would be read as the number of a cube");
        if (!isName(name_)) throw Refusal("a name that begins like a result would be read as one");
        auto catalogue = Catalogue::open(surroundings);
        if (catalogue.has(parseCube(name_))) throw Refusal("there is a cube of that name already");
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
