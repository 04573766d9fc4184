#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Errors.h"
#include "tool/Lineage.h"

namespace cubes::tool {

namespace {

class Tree : public Command {
public:
    Tree() : Command("tree", "Show what an entry was derived from and what was derived from it") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry, which need not exist any more");
        arguments.flag("--dot", dot_, "Print a graph for Graphviz");
    }

    bool onlyReads() const override { return true; }
    std::string task() const override { return "show the lineage of " + entry_; }

    void run(Surroundings const& surroundings, Output& output) override {
        Entries const entries(surroundings, {entry_});
        auto const root = lineageOf(entries.key(entry_), entries.store());
        if (!root.isThere && root.isAsked && root.children.empty())
            throw Refusal("there is no such entry, and nothing was derived from it");
        if (dot_) return output.add(asDot(root));
        if (output.form() == Form::json) return output.show(asJson(root));
        output.add(asText(root));
    }

private:
    std::string entry_;
    bool dot_ = false;
};

}

std::unique_ptr<Command> makeTree() {
    return std::make_unique<Tree>();
}

}
