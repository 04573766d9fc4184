#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Errors.h"

#include <fmt/format.h>

#include <algorithm>

namespace cubes::tool {

namespace {

class Children : public Command {
public:
    Children() : Command("children", "List the results derived from an entry") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry, which need not exist any more");
    }

    bool onlyReads() const override { return true; }
    std::string task() const override { return "list the children of " + entry_; }

    void run(Surroundings const& surroundings, Output& output) override {
        Entries const entries(surroundings, {entry_});
        auto const key = entries.key(entry_);
        auto children = entries.store().children(key);
        std::ranges::sort(children, isListedBefore);
        Table table({{"entry", "entry"}, {"file", "file"}});
        for (auto const& child : children)
            if (auto const found = entries.store().find(child)) table.add({found->text, found->file});
        output.show(table);
        if (children.empty()) printNote(fmt::format("nothing was derived from {}", entries.store().text(key)));
    }

private:
    std::string entry_;
};

}

std::unique_ptr<Command> makeChildren() {
    return std::make_unique<Children>();
}

}
