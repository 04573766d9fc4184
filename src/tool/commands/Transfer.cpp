#include "tool/Catalogue.h"
#include "tool/Command.h"
#include "tool/Errors.h"
#include "tool/Paths.h"
#include "tool/Projects.h"
#include "tool/commands/Removal.h"

#include <fmt/format.h>

#include <cstdlib>
#include <optional>

namespace cubes::tool {

namespace {

using Existing = Catalogue::Existing;

// Copying and moving differ in what happens to the source.
class Transfer : public Command {
public:
    using Command::Command;

    void declare(Arguments arguments) override {
        arguments.required("FROM", from_, "The existing entry");
        arguments.required("TO", to_, "The entry to create or replace");
        arguments.flag("--fail-if-exists", failIfExists_, "Do not replace an existing entry");
        arguments.optional("--from-project", fromProject_, "Project of FROM; default: the one to work in").calls("DIR");
    }

    std::string task() const override { return fmt::format("{} {} to {}", name(), from_, to_); }

    void run(Surroundings const& surroundings, Output& output) override {
        if (fromProject_ && fromProject_->empty()) throw UsageError("--from-project needs a directory");
        fromWord_ = parseEntry(from_);
        toWord_ = parseEntry(to_);
        auto catalogue = Catalogue::open(surroundings);
        if (isElsewhere(catalogue))
            runBetween(catalogue, output);
        else
            runWithin(catalogue, output);
    }

protected:
    EntryWord const& to() const { return toWord_; }
    Existing existing() const { return failIfExists_ ? Existing::refused : Existing::replaced; }

private:
    virtual Entry within(Catalogue& catalogue, Entry const& from) = 0;
    virtual Entry between(Catalogue& catalogue, Catalogue& source, Entry const& from) = 0;

    bool isElsewhere(Catalogue const& catalogue) const {
        if (!fromProject_) return false;
        return !isSameDirectory(findProject(*fromProject_), catalogue.project().root());
    }

    void runWithin(Catalogue& catalogue, Output& output) {
        auto const from = catalogue.entry(fromWord_);
        auto const to = within(catalogue, from);
        show(from, nullptr, to, catalogue, output);
    }

    void runBetween(Catalogue& catalogue, Output& output) {
        // It overrides the database of every project.
        if (std::getenv("CUBES_DATABASE"))
            throw Refusal("CUBES_DATABASE is set, which overrides the database of both projects; unset it");
        Catalogue source(findProject(*fromProject_));
        auto const from = source.entry(fromWord_);
        auto const to = between(catalogue, source, from);
        show(from, &source, to, catalogue, output);
    }

    static void show(
        Entry const& from, Catalogue const* source, Entry const& to, Catalogue const& catalogue, Output& output) {
        Record done;
        done.add("from", "from", from.text());
        if (source) done.add("fromProject", "from project", source->project().root());
        done.add("to", "to", to.text());
        done.add("file", "file", catalogue.path(to));
        output.show(done);
    }

    std::string from_;
    std::string to_;
    std::optional<std::string> fromProject_;
    EntryWord fromWord_;
    EntryWord toWord_;
    bool failIfExists_ = false;
};

class Copy : public Transfer {
public:
    Copy() : Transfer("copy", "Copy an entry to another entry") {}

private:
    Entry within(Catalogue& catalogue, Entry const& from) override { return catalogue.copy(from, to(), existing()); }

    Entry between(Catalogue& catalogue, Catalogue& source, Entry const& from) override {
        return catalogue.copyFrom(source, from, to(), existing());
    }
};

class Move : public Transfer {
public:
    Move() : Transfer("move", "Move an entry to another entry") {}

private:
    Entry within(Catalogue& catalogue, Entry const& from) override {
        return warningOfRemains(catalogue, from, [&] { return catalogue.move(from, to(), existing()); });
    }

    Entry between(Catalogue& catalogue, Catalogue& source, Entry const& from) override {
        return warningOfRemains(source, from, [&] { return catalogue.moveFrom(source, from, to(), existing()); });
    }

    template <typename Moving>
    static Entry warningOfRemains(Catalogue const& source, Entry const& from, Moving const& moving) {
        auto const file = source.path(from);
        auto const children = source.childrenOf(from);
        auto const moved = moving();
        if (source.has(from)) return moved;
        warnOfRemainingFiles({file});
        warnOfOrphans(from.text(), children.size());
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
