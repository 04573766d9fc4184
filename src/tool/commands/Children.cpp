#include "tool/Catalogue.h"
#include "tool/Command.h"
#include "tool/Errors.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class Children : public Command {
public:
    Children() : Command("children", "List the results derived from an entry") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry, which need not exist any more");
    }

    std::string task() const override { return "list the children of " + entry_; }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const word = parseEntry(entry_);
        auto const catalogue = Catalogue::open(surroundings);
        auto const entry = catalogue.possibleEntry(word);
        Table table({{"entry", "entry"}, {"file", "file"}});
        auto const children = catalogue.childrenOf(entry);
        for (auto const& child : children) table.add({child.text(), catalogue.path(child)});
        output.show(table);
        if (children.empty()) printNote(fmt::format("nothing was derived from {}", entry.text()));
    }

private:
    std::string entry_;
};

}

std::unique_ptr<Command> makeChildren() {
    return std::make_unique<Children>();
}

}
