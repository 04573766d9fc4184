#include "tool/Catalogue.h"
#include "tool/Errors.h"
#include "tool/commands/Commands.h"

#include <fmt/format.h>

namespace cubes::tool {

namespace {

class Use : public Command {
public:
    Use() : Command("use", "Protect an entry while it is used, give it free, or count its users") {}

    void declare(Arguments arguments) override {
        arguments.required("ENTRY", entry_, "The entry");
        arguments.optional("CHANGE", change_, "+1: one more user; -1: one less; else they are counted")
            .oneOf({"+1", "-1"});
    }

    std::string task() const override {
        return fmt::format("{} the users of {}", change_.empty() ? "count" : "change", entry_);
    }

    void run(Surroundings const& surroundings, Output& output) override {
        auto const word = parseEntry(entry_);
        auto catalogue = Catalogue::open(surroundings);
        auto const entry = catalogue.entry(word);
        if (change_ == "+1") catalogue.use(entry);
        if (change_ == "-1") catalogue.leave(entry);
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
