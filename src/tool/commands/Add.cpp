#include "tool/Command.h"
#include "tool/Entries.h"
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
        requireCubeName(name_);
        Entries const entries(surroundings);
        if (entries.store().findCube(name_)) throw Refusal("it already exists");
        auto const number = entries.store().addCube(name_);
        auto const cube = entries.cube(std::to_string(number));
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
