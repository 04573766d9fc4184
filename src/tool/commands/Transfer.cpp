#include "tool/Errors.h"
#include "tool/Paths.h"
#include "tool/Projects.h"
#include "tool/commands/Removal.h"
#include "tool/commands/Routes.h"

#include <fmt/format.h>

#include <cstdlib>
#include <optional>

namespace cubes::tool {

namespace {

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
        Entries const entries(surroundings, {from_, to_});
        if (!isElsewhere(entries.project())) return transferFrom(entries, entries, output);
        // It overrides the database of every project.
        if (std::getenv("CUBES_DATABASE"))
            throw Refusal("CUBES_DATABASE is set, which overrides the database of both projects; unset it");
        transferFrom(Entries(Project::open(findProject(*fromProject_))), entries, output);
    }

private:
    /// Stores the source's entry under the target's key.
    virtual void transfer(EntryStore& source, EntryKey const& from, EntryStore& target, EntryKey const& to,
        CopyOptions const& options) const = 0;

    bool isElsewhere(Project const& project) const {
        return fromProject_ && !isSameDirectory(findProject(*fromProject_), project.root());
    }

    void transferFrom(Entries const& source, Entries const& target, Output& output) const {
        auto const from = source.find(from_);
        bool const isOfOne = &source == &target;
        bool const isRead = !isOfOne || !resultKindOf(to_);
        if (from.key.isResult() && isRead) refuseUse(from, from.text);
        if (!isOfOne) verify(from, source);
        auto const to = target.write(to_, [&](EntryKey const& key) {
            if (failIfExists_ && target.store().find(key)) throw Refusal(target.store().text(key) + " already exists");
            transfer(source.store(), from.key, target.store(), key,
                {.exists = failIfExists_ ? OnExisting::fail : OnExisting::replace});
        });
        if (!source.store().find(from.key)) warnOfOrphans(from.text, {from}, source.store());
        show(from, isOfOne ? nullptr : &source.project(), to, output);
    }

    // A damaged file is not stored in another project. Without a provider, route files are copied unverified.
    void verify(EntryInfo const& from, Entries const& source) const {
        auto const kind = resultKindOf(from.text);
        if (!kind || !kind->holdsRoutes) {
            source.store().get(from.key, {.verify = true});
            return;
        }
        verifyRoutes(findRoutes(from_, source));
    }

    static void show(EntryInfo const& from, Project const* source, EntryInfo const& to, Output& output) {
        Record done;
        done.add("from", "from", from.text);
        if (source) done.add("fromProject", "from project", source->root());
        done.add("to", "to", to.text);
        done.add("file", "file", to.file);
        output.show(done);
    }

    std::string from_;
    std::string to_;
    std::optional<std::string> fromProject_;
    bool failIfExists_ = false;
};

class Copy : public Transfer {
public:
    Copy() : Transfer("copy", "Copy an entry to another entry") {}

private:
    void transfer(EntryStore& source, EntryKey const& from, EntryStore& target, EntryKey const& to,
        CopyOptions const& options) const override {
        target.copyFrom(source, from, to, options);
    }
};

class Move : public Transfer {
public:
    Move() : Transfer("move", "Move an entry to another entry") {}

private:
    void transfer(EntryStore& source, EntryKey const& from, EntryStore& target, EntryKey const& to,
        CopyOptions const& options) const override {
        target.moveFrom(source, from, to, options);
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
