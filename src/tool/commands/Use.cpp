#include "tool/Command.h"
#include "tool/Entries.h"
#include "tool/Errors.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class Use : public Command {
public:
    Use() : Command("use", "Count, add or remove the users of an entry, which protect it") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry");
        arguments.optional("CHANGE", change_, "+1: add a user; -1: remove one; default: count them")
            .oneOf({"+1", "-1"});
    }

    std::string task() const override {
        return fmt::format("{} the users of {}", change_.empty() ? "count" : "change", entry_);
    }

    void run(Surroundings const& surroundings, Output& output) override {
        Entries const entries(surroundings, {entry_});
        auto const entry = entries.find(entry_);
        if (change_ == "-1" && entry.users == 0) throw Refusal("it has no users");
        long users = entry.users;
        if (change_ == "+1") users = entries.store().addUser(entry.key);
        if (change_ == "-1") users = entries.store().removeUser(entry.key);
        Record used;
        used.add("entry", "entry", entry.text);
        used.add("users", "users", users);
        output.show(used);
    }

private:
    std::string entry_;
    std::string change_;
};

}

std::unique_ptr<Command> makeUse() {
    return std::make_unique<Use>();
}

}
