#include "tool/Catalogue.h"
#include "tool/Errors.h"
#include "tool/commands/Commands.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class Use : public Command {
public:
    Use() : Command("use", "Protect an entry while it is used, or give it free") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry");
        arguments.required("CHANGE", change_, "+1: one more user; -1: one less").oneOf({"+1", "-1"});
    }

    std::string task() const override { return fmt::format("change the users of {}", entry_); }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const word = parseEntry(entry_);
        auto catalogue = Catalogue::open(surroundings);
        auto const entry = catalogue.entry(word);
        if (change_ == "+1")
            catalogue.use(entry);
        else
            catalogue.leave(entry);
        Record used;
        used.add("entry", "entry", entry.text());
        used.add("users", "users", catalogue.users(entry));
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
