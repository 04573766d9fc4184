#include "tool/Catalogue.h"
#include "tool/Lineage.h"
#include "tool/Messages.h"
#include "tool/commands/Commands.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

using Existing = Catalogue::Existing;

// Copying and moving differ in what becomes of the source.
class Transfer : public Command {
public:
    using Command::Command;

    void declare(Arguments arguments) override {
        arguments.required("FROM", from_, "The entry that is there");
        arguments.required("TO", to_, "The entry to make; one that is there is replaced");
        arguments.flag("--fail-if-exists", failIfExists_, "Refuse to replace an entry");
    }

    std::string task() const override { return fmt::format("{} {} to {}", name(), from_, to_); }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const fromWord = parseEntry(from_);
        auto const toWord = parseEntry(to_);
        auto catalogue = Catalogue::open(surroundings);
        auto const from = catalogue.entry(fromWord);
        auto const to = transfer(catalogue, from, toWord, failIfExists_ ? Existing::refused : Existing::replaced);
        Record done;
        done.add("from", "from", from.text());
        done.add("to", "to", to.text());
        done.add("file", "file", catalogue.path(to));
        output.show(done);
    }

private:
    virtual Entry transfer(Catalogue& catalogue, Entry const& from, EntryWord const& to, Existing existing) = 0;

    std::string from_;
    std::string to_;
    bool failIfExists_ = false;
};

class Copy : public Transfer {
public:
    Copy() : Transfer("copy", "Copy an entry to another entry") {}

private:
    Entry transfer(Catalogue& catalogue, Entry const& from, EntryWord const& to, Existing existing) override {
        return catalogue.copy(from, to, existing);
    }
};

class Move : public Transfer {
public:
    Move() : Transfer("move", "Move an entry to another entry") {}

private:
    Entry transfer(Catalogue& catalogue, Entry const& from, EntryWord const& to, Existing existing) override {
        auto const children = Lineage(catalogue).childrenOf(from);
        auto const moved = catalogue.move(from, to, existing);
        if (!children.empty() && !(moved == from))
            tellWarning(fmt::format("results that still name {} as their parent: {}", from.text(), children.size()));
        return moved;
    }
};

}

std::unique_ptr<Command> makeCopy() {
    return std::make_unique<Copy>();
}

std::unique_ptr<Command> makeMove() {
    return std::make_unique<Move>();
}

}
